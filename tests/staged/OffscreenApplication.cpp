// The one application object of a test program that shows views: it needs no display and no GPU. Compiled
// into the program, which then has it from the first test to the last.

#include "ui/Views.h"

#include <QGuiApplication>

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

namespace velmora::test {
namespace {

class OffscreenApplication : public testing::Environment {
public:
    void SetUp() override {
        ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
        ::setenv("QT_QUICK_BACKEND", "software", 1);
        m_application = std::make_unique<QGuiApplication>(m_count, m_arguments);
        Views::prepare();
    }

    void TearDown() override { m_application.reset(); }

private:
    char m_name[5] = "test";
    char* m_arguments[2] = {m_name, nullptr};
    int m_count = 1;
    std::unique_ptr<QGuiApplication> m_application;
};

[[maybe_unused]] const testing::Environment* const application =
    testing::AddGlobalTestEnvironment(new OffscreenApplication);

} // namespace
} // namespace velmora::test
