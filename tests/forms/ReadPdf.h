#pragma once

#include <gtest/gtest.h>

#include <QProcess>
#include <QStringList>

#include <string>

/// What a reader of PDF files makes of ours: the lines without what is blank, the pages parted by one that is
/// "\f".
inline QStringList ReadPdf(const std::string& path) {
    QProcess reader;
    reader.start(QStringLiteral("pdftotext"),
                 {QStringLiteral("-layout"), QString::fromStdString(path), QStringLiteral("-")});
    EXPECT_TRUE(reader.waitForFinished()) << "pdftotext is missing";
    QString text = QString::fromUtf8(reader.readAllStandardOutput());
    text.replace(QLatin1Char('\f'), QStringLiteral("\n\\f\n"));
    QStringList lines;
    for (const QString& line : text.split(QLatin1Char('\n'))) {
        if (!line.trimmed().isEmpty()) lines << line.simplified();
    }
    return lines;
}
