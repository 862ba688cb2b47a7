// GoogleTest main. Core tests get a QCoreApplication (the program's application paths, no window
// system); widget tests are built with TRENDAX_WIDGET_TESTS and get a QApplication on the
// platform CTest sets (offscreen). Listing the tests needs no application at all.
#ifdef TRENDAX_WIDGET_TESTS
#include <QApplication>
using Application = QApplication;
#else
#include <QCoreApplication>
using Application = QCoreApplication;
#endif
#include <algorithm>
#include <cstring>
#include <gmock/gmock.h>
#include <optional>

int main(int argc, char** argv) {
    const bool listing = std::any_of(argv + 1, argv + argc, [](const char* arg) {
        return std::strncmp(arg, "--gtest_list_tests", 18) == 0;
    });
    ::testing::InitGoogleMock(&argc, argv);
    std::optional<Application> app;
    if (!listing)
        app.emplace(argc, argv);
    return RUN_ALL_TESTS();
}
