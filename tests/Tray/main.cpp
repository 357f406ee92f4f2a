#include "Quarrow/Desktop/WindowedApplication.h"

#include <gtest/gtest.h>

int main(int argc, char *argv[]) {
  ::testing::InitGoogleTest(&argc, argv);
  const quarrow::WindowedApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
