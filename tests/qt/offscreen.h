#pragma once
/// A window on Qt's offscreen platform, for all tests of a suite.

#include "platform/qt/qt_platform.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QByteArray>
#include <QWidget>

#include <memory>

/// What a screen reader calls it: by its label, else its name.
inline QString spoken(QWidget& widget) {
    QAccessibleInterface* reader = QAccessible::queryAccessibleInterface(&widget);
    const auto labels = reader->relations(QAccessible::Label);
    return (labels.empty() ? reader : labels[0].first)->text(QAccessible::Name);
}

class OffscreenTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        static int argc = 1;
        static char name[] = "test";
        static char* argv[] = {name, nullptr};
        host = std::make_unique<QtPlatform>(argc, argv);
        host->window().create("Title");
        host->window().show();
    }
    static void TearDownTestSuite() { host.reset(); }

    static inline std::unique_ptr<QtPlatform> host;
};
