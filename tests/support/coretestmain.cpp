// GoogleTest main of the core tests: they link the core library and Qt Core only, so there is no
// window system to start. A QCoreApplication gives them the same application paths as the program.
#include <QCoreApplication>
#include <cstring>
#include <gmock/gmock.h>
#include <memory>

int main(int argc, char** argv) {
    bool listing = false;
    for (int i = 1; i < argc; ++i)
        listing = listing || std::strncmp(argv[i], "--gtest_list_tests", 18) == 0;
    ::testing::InitGoogleMock(&argc, argv);
    std::unique_ptr<QCoreApplication> app;
    if (!listing)
        app = std::make_unique<QCoreApplication>(argc, argv);
    return RUN_ALL_TESTS();
}
