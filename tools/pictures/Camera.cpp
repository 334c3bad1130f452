#include "Camera.h"

#include "LayoutCheck.h"
#include "OfficeForDay.h"
#include "platform/Look.h"

#include <QCoreApplication>
#include <QDir>
#include <QPixmap>
#include <QStringList>
#include <QWidget>

#include <cstdio>
#include <utility>

namespace {

/// What is known and stands: a star is too thin for its colour to be measured, and with letters of twice the
/// size a customer's code, name and city are wider than any list.
bool IsKnown(const QString& screen, const QString& problem, bool large) {
    return (screen == QLatin1String("frmExport1-calculate") &&
            problem.startsWith(QLatin1String("cmdMultiply has"))) ||
           (large && screen == QLatin1String("frmStandInOrder-lines") &&
            problem.startsWith(QLatin1String("cboCustomer cuts")));
}

/// The fullest screens.
bool IsWide(const QString& screen) {
    return screen == QLatin1String("frmConfig") || screen == QLatin1String("frmConfig-checked") ||
           screen == QLatin1String("frmExport1-calculate");
}

} // namespace

void Settle() {
    for (int i = 0; i < 5; ++i) QCoreApplication::processEvents();
}

void Camera::Take(QWidget& window, const QString& name) {
    window.show();
    Settle();
    TakeShown(window, name);
}

FolderCamera::FolderCamera(QString folder) : folder_(std::move(folder)) {
    QDir().mkpath(folder_);
}

void FolderCamera::TakeShown(QWidget& window, const QString& name) {
    const QString path = folder_ + QLatin1Char('/') + name + (IsDarkLook() ? "-dark.png" : "-light.png");
    if (!window.grab().save(path)) throw OfficeFailure("cannot write " + path.toStdString());
    std::printf("%s\n", path.toLocal8Bit().constData());
}

void Looker::TakeShown(QWidget& window, const QString& name) {
    ++looks_;
    QStringList problems;
    if (!mayScroll_) problems << ContrastProblems(window); // of larger letters the colours are the same
    if (!IsDarkLook()) problems << LayoutProblems(window);
    if (!IsDarkLook() && window.isWindow()) problems << KeyProblems(window);
    problems.removeIf([&](const QString& problem) { return IsKnown(name, problem, mayScroll_); });
    if (Scrolls(window) && !mayScroll_ && !(longer_ && IsWide(name)))
        problems << QStringLiteral("the window scrolls");
    problems.removeDuplicates();
    for (const QString& problem : problems)
        std::printf("%s%s: %s\n", qPrintable(name), IsDarkLook() ? " (dark)" : "", qPrintable(problem));
    problems_ += static_cast<int>(problems.size());
}
