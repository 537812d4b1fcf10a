#include "vexutils/FieldWidth.h"

int FieldWidth(int formatKind) {
  return formatKind == 1 ? 8 : 16;
}
