// main() of the window tests.
#include <gmock/gmock.h>

#include "support/OffscreenApplication.h"

int main(int argc, char** argv) {
  testing::InitGoogleMock(&argc, argv);
  const COffscreenApplication application(argc, argv);
  QApplication::setStyle("Fusion");
  return RUN_ALL_TESTS();
}
