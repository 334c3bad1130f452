// A picture of every screen of the program, in the light look and in the dark one:
//
//   pictures_of_screens BUILD FOLDER [TEXTS]
//   pictures_of_screens BUILD --pages
//   pictures_of_screens BUILD --look [TEXTS]
//   pictures_of_screens BUILD --sheets FOLDER
//
// The first writes FOLDER/<form>-light.png and FOLDER/<form>-dark.png, with the demonstration day's files in
// the office that the screens show; and more of a form that has several faces. FOLDER/Report-*.pdf are the
// reports as a printer would have them. TEXTS is a translation, a file of rows as in Messages.tsv, or the
// word "stretched" for the built-in texts, each a third longer. At another scale: set QT_SCALE_FACTOR before,
// or QT_FONT_DPI for larger letters alone. The second, in the folder of the sources, makes anew the pictures
// that the help and README.md refer to, in the light look, and names those that have changed. The third takes
// no pictures: it looks for what is cut, lies upon another, cannot be reached or read (LayoutCheck.h), says
// so, and fails when there is something. The dark look is gone through with the built-in texts only. The
// fourth lays the pictures in the folders below FOLDER side by side (ContactSheet.h).

#include "ContactSheet.h"
#include "Faces.h"
#include "LayoutCheck.h"
#include "PagePictures.h"
#include "core/Globals.h"
#include "platform/Convert.h"
#include "platform/Look.h"
#include "program/forms/frmMain1.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QScreen>
#include <QTemporaryDir>

#include <cstdio>
#include <memory>
#include <utility>

namespace {

/// A screen of 1024 by 768, of which a panel takes 32. With QT_SCALE_FACTOR it has as many dots more, so that
/// as much of each window is seen; a look for faults keeps it at its size.
void UseSmallScreen(const QTemporaryDir& work, bool looks) {
    const double factor = looks ? 1 : std::max(1.0, qEnvironmentVariable("QT_SCALE_FACTOR").toDouble());
    const QString screen = QStringLiteral("{\"screens\":[{\"name\":\"small\",\"x\":0,\"y\":0,\"width\":%1,"
                                          "\"height\":%2,\"dpr\":1}]}")
                               .arg(static_cast<int>(1024 * factor))
                               .arg(static_cast<int>(736 * factor));
    const std::string file = PathFromQt(work.filePath(QStringLiteral("screen.json")));
    WriteWholeFile(file, screen.toStdString());
    qputenv("QT_QPA_PLATFORM", QByteArray::fromStdString("offscreen:configfile=" + file));
}

/// Without what a screen that is none says of each window.
void SayInShort(QtMsgType, const QMessageLogContext&, const QString& text) {
    if (!text.startsWith(QLatin1String("This plugin does not support")))
        std::fprintf(stderr, "%s\n", qPrintable(text));
}

/// What is wanted of a call.
struct Wish {
    enum class Kind { Folder, Pages, Look, Sheets };

    explicit Wish(const QStringList& arguments) : Build(arguments.value(1)), Texts(arguments.value(3)) {
        const QString what = arguments.value(2);
        if (what == QLatin1String("--pages")) How = Kind::Pages;
        if (what == QLatin1String("--look")) How = Kind::Look;
        if (what == QLatin1String("--sheets")) How = Kind::Sheets;
        if (How == Kind::Folder) Folder = QDir(what).absolutePath();
        if (How == Kind::Sheets) Folder = std::exchange(Texts, QString());
        const bool unknown = How == Kind::Folder && (what.isEmpty() || what.startsWith(QLatin1String("--")));
        IsUnderstood = !unknown && arguments.size() <= 4 && (How != Kind::Sheets || !Folder.isEmpty());
    }

    bool IsStretched() const { return Texts == QLatin1String("stretched"); }

    QString Build, Folder, Texts;
    Kind How = Kind::Folder;
    bool IsUnderstood = false;
};

void PutTexts(const Wish& wish, const QString& place) {
    if (wish.IsStretched())
        WriteStretchedTexts(PathFromQt(place));
    else if (!wish.Texts.isEmpty() && !QFile::copy(wish.Texts, place))
        throw OfficeFailure("cannot copy " + wish.Texts.toStdString());
}

/// Goes through all screens, in both looks where they are wanted.
void TakeRounds(const Wish& wish, const QString& work, Camera& camera) {
    const OfficeForDay office(wish.Build, work + QStringLiteral("/office"), QStringLiteral("samples/day"));
    FillOffice(office);
    FillSettings(office);
    PutTexts(wish, office.Path(QStringLiteral("Messages.tsv")));
    Nobody nobody;
    SomeManager manager(PathFromQt(work));
    manager.Fill();
    const std::string standIn = MakeStandIn(wish.Build, work + QStringLiteral("/handheld"));
    const bool looks = wish.How == Wish::Kind::Look;
    const bool onlyLight = wish.How == Wish::Kind::Pages || (looks && !wish.Texts.isEmpty());
    for (const bool dark : {false, true}) {
        if (dark && onlyLight) break;
        Global = Globals{};
        Global.Clock = [] { return DateTime{2026, 11, 21, 17, 50, 0}; };
        Global.TheOperator = &nobody;
        Global.MakeSFrmAX40 = [] { return std::make_unique<TwoUsers>(); };
        Global.AppPath = PathFromQt(office.Path(QString()));
        Global.TheManagerDesk = &manager;
        Global.StandInFolder = standIn;
        ApplyLook(dark);
        The<frmMain1>();
        GivenUnattended();
        GivenClearing();
        GivenNotes();
        Global.View[ViewOrLinAudt] = true;
        GivenTotals();
        TakeAllScreens({wish.Build, office, nobody, work}, camera);
        // They are black on white in either look.
        if (dark && !looks) PrintReports(nobody, wish.Folder);
        FormRegistry::Instance().Clear();
    }
}

int Look(const Wish& wish, const QString& work) {
    const QScreen& screen = *QGuiApplication::primaryScreen();
    Looker looker(screen.logicalDotsPerInch() > 96 || screen.devicePixelRatio() > 1, wish.IsStretched());
    TakeRounds(wish, work, looker);
    std::printf("%d screens, %d problems\n", looker.Looks(), looker.Problems());
    return looker.Problems() == 0 ? 0 : 1;
}

int Do(const Wish& wish, const QString& work) {
    switch (wish.How) {
    case Wish::Kind::Sheets:
        std::printf("%d sets of pictures\n", MakeContactSheets(wish.Folder));
        return 0;
    case Wish::Kind::Look:
        return Look(wish, work);
    case Wish::Kind::Pages: {
        PagePictures pages(QDir::currentPath());
        TakeRounds(wish, work, pages);
        pages.Finish();
        return 0;
    }
    case Wish::Kind::Folder:
        break;
    }
    FolderCamera camera(wish.Folder);
    TakeRounds(wish, work, camera);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    const Wish wish([&] {
        QStringList arguments;
        for (int k = 0; k < argc; ++k) arguments << QString::fromLocal8Bit(argv[k]);
        return arguments;
    }());
    if (!wish.IsUnderstood) {
        std::fputs("pictures_of_screens BUILD FOLDER [TEXTS]\n"
                   "pictures_of_screens BUILD --pages\n"
                   "pictures_of_screens BUILD --look [TEXTS]\n"
                   "pictures_of_screens BUILD --sheets FOLDER\n",
                   stderr);
        return 2;
    }
    try {
        const QTemporaryDir work;
        if (!work.isValid()) throw OfficeFailure(work.errorString().toStdString());
        // A look needs the small screen, whatever stands on the desk.
        const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
        const bool looks = wish.How == Wish::Kind::Look;
        if (looks || platform.isEmpty() || platform == "offscreen") UseSmallScreen(work, looks);
        qInstallMessageHandler(SayInShort);
        qputenv("XDG_CONFIG_HOME", work.path().toLocal8Bit());
        const QApplication application(argc, argv);
        QApplication::setQuitOnLastWindowClosed(false);
        QApplication::setApplicationVersion(QStringLiteral(TRAMBLE_VERSION));
        return Do(wish, work.path());
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
