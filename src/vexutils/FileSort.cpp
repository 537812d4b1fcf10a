#include "vexutils/FileSort.h"
