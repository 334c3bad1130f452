#pragma once

#include "OfficeForDay.h"
#include "driver/DriverClient.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include <functional>

inline const QString Main = QStringLiteral("frmMain1");
inline const QString NoManager = QStringLiteral("Palm Desktop software is needed");

inline QByteArray Bytes(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

/// The real program in an office of its own, driven from outside.
class Program : public ::testing::Test {
protected:
    explicit Program(const QString& samples = Samples())
        : office_(QStringLiteral(TRAMBLE_BUILD), folder_.filePath(QStringLiteral("office")), samples) {}

    static QString Samples() { return QStringLiteral(TRAMBLE_SOURCE) + QStringLiteral("/samples/day"); }

    DrivenProgram InOffice() const {
        DrivenProgram start;
        start.Program = office_.Program();
        start.Folder = office_.Path(QString());
        start.Environment[QStringLiteral("XDG_CONFIG_HOME")] = folder_.filePath(QStringLiteral("config"));
        start.Environment[QStringLiteral("XDG_RUNTIME_DIR")] = folder_.path();
        start.Environment[QStringLiteral("TMPDIR")] = folder_.path();
        start.Environment[QStringLiteral("LSAN_OPTIONS")] =
            QStringLiteral("suppressions=" TRAMBLE_SOURCE "/tests/leaks.txt:print_suppressions=0");
        return start;
    }

    static void StartUp(DriverClient& program) {
        program.ExpectContaining(NoManager);
        program.Start();
        program.WaitForm(Main);
    }

    static QString RunActivity(
        DriverClient& program, const QString& button, const QString& form, const QString& activity,
        const std::function<void()>& further = [] {}) {
        program.Click(Main, button);
        program.WaitForm(form);
        program.Choose(form, QStringLiteral("cboMaster"), activity);
        program.Expect(QStringLiteral("Perform %1 - Is that correct?").arg(activity), QStringLiteral("Yes"));
        further();
        program.Click(form, QStringLiteral("cmdOK"));
        program.WaitTextContaining(form, QStringLiteral("lblProgress"),
                                   QStringLiteral("Process completed with"));
        const QString report = program.Text(form, QStringLiteral("lblSST_1"));
        program.Click(form, QStringLiteral("cmdCancel"));
        program.WaitGone(form);
        return report;
    }

    QTemporaryDir folder_;
    OfficeForDay office_;
};
