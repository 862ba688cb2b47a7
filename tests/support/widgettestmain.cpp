// GoogleTest main of the widget tests: a QApplication on the platform CTest sets (offscreen).
// Listing the tests needs no application at all.
#include <QApplication>
#include <cstring>
#include <gmock/gmock.h>
#include <memory>

int main(int argc, char** argv) {
    bool listing = false;
    for (int i = 1; i < argc; ++i)
        listing = listing || std::strncmp(argv[i], "--gtest_list_tests", 18) == 0;
    ::testing::InitGoogleMock(&argc, argv);
    std::unique_ptr<QApplication> app;
    if (!listing)
        app = std::make_unique<QApplication>(argc, argv);
    return RUN_ALL_TESTS();
}
