// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <QApplication>

#include "entry/RKParam.h"

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    gantrix::EnsureApplication();
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
