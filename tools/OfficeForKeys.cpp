#include "OfficeForKeys.h"

#include "FilledTables.h"

#include <QFile>

OfficeForKeys::OfficeForKeys(const QString& build, std::int32_t records)
    : office_(build, folder_.filePath(QStringLiteral("office")), samples_.path()),
      program_({office_.Program(), {}, office_.Path(QString()), {}, {}}) {
    FillAllTables(QFile::encodeName(office_.Path(QStringLiteral("DBFFiles"))).toStdString(), records);
    program_.ExpectContaining(QStringLiteral("Palm Desktop software is needed"));
    program_.Start();
    program_.WaitForm(QStringLiteral("frmMain1"));
}
