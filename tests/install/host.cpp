// SPDX-License-Identifier: Apache-2.0
// A host program as a user of the installed library writes one: its own QApplication, the
// parameter mode through the C interface on the project named on the command line, and a
// timer that ends the parameter menu with End, as a person does.
#include <GantrixA0J.h>

#include <QApplication>
#include <QKeyEvent>
#include <QTimer>
#include <QWidget>
#include <cstdio>

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: host CPU PROJECT-DIR\n");
        return 2;
    }
    QApplication app(argc, argv);
    QTimer end;
    QObject::connect(&end, &QTimer::timeout, [] {
        if (QWidget* modal = QApplication::activeModalWidget()) {
            QKeyEvent press(QEvent::KeyPress, Qt::Key_End, Qt::NoModifier);
            QKeyEvent release(QEvent::KeyRelease, Qt::Key_End, Qt::NoModifier);
            QApplication::sendEvent(modal, &press);
            QApplication::sendEvent(modal, &release);
        }
    });
    end.start(20);

    RKParam* param = RKParam_Create();
    RKParam_Let_szPcName(param, argv[1]);
    RKParam_Let_ProjectName(param, argv[2]);
    int16_t result = -1;
    const int status = RKParam_Param_main(param, &result);
    std::printf("status %d result %d changed %d \"%s\"\n", status, result,
                RKParam_Get_ContentChangeFlag(param), RKParam_ErrorDescription(param));
    RKParam_Release(param);
    return status == 0 && result == 1 ? 0 : 1;
}
