#include "AllForms.h"
#include "core/Messages.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "exchange/forms/frmConvert.h"
#include "forms/FormTest.h"
#include "help/HelpTopics.h"
#include "help/forms/HelpFile.h"
#include "help/forms/HelpPage.h"
#include "help/forms/PopupBox.h"
#include "help/forms/QtHelp.h"
#include "help/forms/frmHelp.h"
#include "platform/Convert.h"
#include "platform/FindBar.h"
#include "platform/Printing.h"

#include <QHelpContentModel>
#include <QHelpIndexModel>
#include <QLabel>
#include <QListView>
#include <QListWidget>
#include <QProcess>
#include <QPushButton>
#include <QRegularExpression>
#include <QTest>
#include <QTreeView>
#include <QWhatsThis>

#include <filesystem>
#include <set>

namespace {

class HelpTest : public FormTest {
protected:
    HelpTest() {
        GivenOffice();
        Use(TEST_HELP);
    }
    ~HelpTest() override { FormRegistry::Instance().Clear(); }

    void Use(const std::string& file) { help_.Help().HHSetHelpFile(file); }

    /// Opens a topic and waits until contents and keywords are there.
    frmHelp& OpenTopic(const std::string& topic) {
        ShowHelpTopic(topic);
        auto& form = The<frmHelp>();
        if (const QAbstractItemModel* contents = Tree(form).model()) {
            const auto* keywords = static_cast<const QHelpIndexModel*>(List(form, "lstKeywords").model());
            WaitInLoop([&] { return contents->rowCount() == 0 || keywords->isCreatingIndex(); });
        }
        Settle();
        return form;
    }

    static HelpPage& Page(FormBehaviour& form) { return dynamic_cast<HelpPage&>(Control(form, "rtbTopic")); }
    static QTreeView& Tree(FormBehaviour& form) {
        return dynamic_cast<QTreeView&>(Control(form, "tvwContents"));
    }
    static QListView& List(FormBehaviour& form, const char* name) {
        return dynamic_cast<QListView&>(Control(form, name));
    }
    static std::string Words(FormBehaviour& form) { return Page(form).toPlainText().toStdString(); }
    static std::string Shown(FormBehaviour& form) { return Page(form).source().fileName().toStdString(); }

    /// A key to whatever has the focus of a form's window.
    static void Key(FormBehaviour& form, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QWidget& window = form.Window();
        QTest::keyClick(window.focusWidget() ? window.focusWidget() : &window, static_cast<Qt::Key>(key),
                        modifiers);
        Settle();
    }
    static void TypeWords(FormBehaviour& form, const QString& words) {
        QTest::keyClicks(form.Window().focusWidget(), words);
        Settle();
    }

    static void BeginSearch(FormBehaviour& form, const QString& words) {
        Type(form, "txtWords", words);
        Click(form, "cmdListTopics");
    }
    static void AwaitSearch(FormBehaviour& form) {
        WaitInLoop([&] { return TextOf(form, "lblFound") == ToQt(Text(msg::HelpSearching)); });
        Settle();
    }
    static void Search(FormBehaviour& form, const QString& words) {
        BeginSearch(form, words);
        AwaitSearch(form);
    }

    QtHelp help_;
};

bool Has(const std::string& text, std::string_view part) {
    return text.find(part) != std::string::npos;
}

// ---- topics and pages ----

TEST_F(HelpTest, ATopicIsFoundWhateverItsCase) {
    auto& form = OpenTopic("notes.HTM");
    EXPECT_EQ(Shown(form), "Notes.htm");
    EXPECT_TRUE(Has(Words(form), "Écrire à main: a pelican takes notes."));
    OpenTopic("Introduction.htm");
    EXPECT_EQ(Shown(form), "INTRODUCTION.htm");
}

TEST_F(HelpTest, ATopicThatIsNotThereIsToldByItsNameAndTraced) {
    auto& form = OpenTopic("Unicorns.htm");
    EXPECT_TRUE(Has(Words(form), "The help has no topic of this name: Unicorns.htm"));
    EXPECT_TRUE(Has(Global.Events.Entry(0), "Unicorns.htm"));
    OpenTopic("../../etc/passwd");
    EXPECT_TRUE(Has(Words(form), "../../etc/passwd"));
}

TEST_F(HelpTest, AMissingHelpFileIsToldInWordsAndIsReadOnceItIsThere) {
    const std::string path = Folder() + "Tramble_Help.qch";
    Use(path);
    auto& form = OpenTopic("Notes.htm");
    EXPECT_TRUE(Has(Words(form), "The help file cannot be found: " + path));
    EXPECT_FALSE(Enabled(form, "tvwContents"));

    std::filesystem::copy_file(TEST_HELP, path);
    OpenTopic("Notes.htm");
    EXPECT_EQ(Shown(form), "Notes.htm");
    EXPECT_TRUE(Enabled(form, "tvwContents"));
}

TEST_F(HelpTest, ADamagedHelpFileIsToldInWords) {
    const std::string whole = Bytes(TEST_HELP);
    const std::string contents[] = {"", "This is no help file.", whole.substr(0, 100), whole.substr(0, 5000),
                                    whole.substr(0, 16) + std::string(4000, '\xFF')};
    int number = 0;
    for (const std::string& bytes : contents) {
        const std::string path = GivenFile("broken" + std::to_string(++number) + ".qch", bytes);
        Use(path);
        EXPECT_TRUE(Has(Words(OpenTopic("Notes.htm")), "The help file is damaged")) << number;
    }
}

TEST_F(HelpTest, LinksLeadToTopicsWhateverTheirCaseAndBackAgain) {
    auto& form = OpenTopic("INTRODUCTION.htm");
    EXPECT_FALSE(Enabled(form, "cmdBack"));

    emit Page(form).Followed(Page(form).source().resolved(QUrl(QStringLiteral("notes.HTM"))));
    EXPECT_EQ(Shown(form), "Notes.htm");
    Click(form, "cmdBack");
    EXPECT_EQ(Shown(form), "INTRODUCTION.htm");
    Click(form, "cmdForward");
    EXPECT_EQ(Shown(form), "Notes.htm");
    Click(form, "cmdHome");
    EXPECT_EQ(Shown(form), "INTRODUCTION.htm");
}

TEST_F(HelpTest, ALinkToNoPageIsToldAndTheWayBackIsOpen) {
    auto& form = OpenTopic("INTRODUCTION.htm");
    emit Page(form).Followed(Page(form).source().resolved(QUrl(QStringLiteral("Nowhere.htm"))));
    EXPECT_TRUE(Has(Words(form), "The help has no topic of this name: Nowhere.htm"));
    Click(form, "cmdBack");
    EXPECT_EQ(Shown(form), "INTRODUCTION.htm");
}

TEST_F(HelpTest, ALinkOutsideIsOpenedByTheDesktopAndOnlyWhenTheOperatorWantsIt) {
    auto& form = OpenTopic("INTRODUCTION.htm");
    const QUrl away(QStringLiteral("https://example.org/away"));
    const Text question =
        ::Lines(msg::HelpOpenOutside, Text::Path(std::string_view(away.toString().toStdString())));

    Operator_.Expect(question).Answer(Answer::No);
    emit Page(form).Followed(away);
    EXPECT_TRUE(Operator_.Links().empty());

    Operator_.Expect(question).Answer(Answer::Yes);
    Operator_.ExpectLink("https://example.org/away");
    emit Page(form).Followed(away);
    EXPECT_EQ(Operator_.Links(), std::vector<std::string>{"https://example.org/away"});
    EXPECT_EQ(Shown(form), "INTRODUCTION.htm");
}

TEST_F(HelpTest, NoPageReachesAFileOfTheComputer) {
    auto& form = OpenTopic("INTRODUCTION.htm");
    GivenFile("secret.htm", "secret");
    const QUrl secret = QUrl::fromLocalFile(QString::fromStdString(Folder() + "secret.htm"));
    emit Page(form).Followed(secret);
    EXPECT_TRUE(Has(Words(form), "The help has no topic of this name: secret.htm"));
    EXPECT_TRUE(Page(form).loadResource(QTextDocument::ImageResource, secret).isNull());
}

TEST_F(HelpTest, APageShowsItsPictures) {
    auto& form = OpenTopic("Notes.htm");
    const QVariant picture =
        Page(form).loadResource(QTextDocument::ImageResource, QUrl(QStringLiteral("pictures/box.png")));
    EXPECT_EQ(QImage::fromData(picture.toByteArray()).width(), 12);
}

TEST_F(HelpTest, AnAddressWithAPlaceOnItsPageIsFound) {
    auto& form = OpenTopic("printers.htm#ribbon");
    EXPECT_EQ(Shown(form), "Printers.htm");
    EXPECT_EQ(Page(form).source().fragment(), QStringLiteral("ribbon"));
}

TEST_F(HelpTest, ATopicIsAddressedByNumberByKeywordAndByLink) {
    HTMLHelp& help = help_.Help();
    help.HHTopicID = 3;
    help.HHDisplayTopicID();
    auto& form = The<frmHelp>();
    EXPECT_EQ(Shown(form), "Printers.htm");

    help.HHKeyword = "BEGINNING";
    help.HHDisplayKeyword();
    Settle();
    EXPECT_EQ(Shown(form), "INTRODUCTION.htm");

    help.HHALink = "nothing;paper";
    help.HHDisplayALink();
    EXPECT_EQ(Shown(form), "Notes.htm");
    EXPECT_NE(help.HHWndHandle(), 0U);

    for (const bool onTop : {true, false}) {
        help.HHShowOnTop = onTop;
        help.HHDisplayTopicID();
        EXPECT_EQ(form.windowFlags().testFlag(Qt::WindowStaysOnTopHint), onTop);
        EXPECT_TRUE(form.isVisible());
    }

    help.HHClose();
    Settle();
    EXPECT_EQ(help.HHWndHandle(), 0U);
    EXPECT_EQ(IfLoaded<frmHelp>(), nullptr);
}

// ---- contents, index, search ----

TEST_F(HelpTest, ThePageThatIsShownIsMarkedInTheContentsAndAClickThereShowsAnother) {
    auto& form = OpenTopic("Printers.htm");
    QTreeView& tree = Tree(form);
    EXPECT_EQ(tree.currentIndex().data().toString(), QStringLiteral("Printers"));

    tree.setCurrentIndex(tree.currentIndex().siblingAtRow(0));
    emit tree.clicked(tree.currentIndex());
    EXPECT_EQ(Shown(form), "Notes.htm");

    OpenTopic("INTRODUCTION.htm");
    EXPECT_EQ(tree.currentIndex().data().toString(), QStringLiteral("Introduction"));
    Click(form, "cmdOK");
    EXPECT_EQ(Tree(OpenTopic("Notes.htm")).currentIndex().data().toString(), QStringLiteral("Notes"));
}

TEST_F(HelpTest, AKeywordOfSeveralTopicsListsThemAll) {
    auto& form = OpenTopic("INTRODUCTION.htm");
    help_.Help().HHDisplayIndex();
    Settle();
    EXPECT_FALSE(Visible(form, "lstTopics"));

    Type(form, "txtKeyword", QStringLiteral("pap"));
    Click(form, "cmdDisplay");
    EXPECT_TRUE(Visible(form, "lstTopics"));
    EXPECT_EQ(Rows(form, "lstTopics").size(), 2);
    const std::string first = Shown(form);
    dynamic_cast<QListWidget&>(Control(form, "lstTopics")).setCurrentRow(1);
    EXPECT_NE(Shown(form), first);

    Type(form, "txtKeyword", QStringLiteral("beg"));
    Click(form, "cmdDisplay");
    EXPECT_FALSE(Visible(form, "lstTopics"));
    EXPECT_EQ(Shown(form), "INTRODUCTION.htm");
}

TEST_F(HelpTest, TheSearchListsTheTopicsThatHaveEveryWordAndShowsTheFirst) {
    auto& form = OpenTopic("INTRODUCTION.htm");
    help_.Help().HHDisplaySearch();
    Search(form, QStringLiteral("pelican"));
    QStringList found = Rows(form, "lstFound");
    found.sort();
    EXPECT_EQ(found, (QStringList{QStringLiteral("Notes on paper"), QStringLiteral("Printers")}));
    EXPECT_EQ(TextOf(form, "lblFound"), QStringLiteral("Topics found: 2"));

    Search(form, QStringLiteral("PELI print"));
    EXPECT_EQ(Rows(form, "lstFound"), QStringList{QStringLiteral("Printers")});
    EXPECT_EQ(Shown(form), "Printers.htm");
}

TEST_F(HelpTest, APageThatIsOpenedWhileASearchRunsStays) {
    auto& form = OpenTopic("Notes.htm");
    help_.Help().HHDisplaySearch();
    BeginSearch(form, QStringLiteral("pelican"));

    ShowHelpTopic("INTRODUCTION.htm");
    AwaitSearch(form);

    EXPECT_EQ(Rows(form, "lstFound").size(), 2);
    EXPECT_EQ(Shown(form), "INTRODUCTION.htm");
}

TEST_F(HelpTest, ThePageThatIsShownAndAskedForAgainWhileASearchRunsStays) {
    auto& form = OpenTopic("INTRODUCTION.htm");
    help_.Help().HHDisplaySearch();
    BeginSearch(form, QStringLiteral("pelican"));

    ShowHelpTopic("INTRODUCTION.htm");
    AwaitSearch(form);

    EXPECT_EQ(Shown(form), "INTRODUCTION.htm");
}

TEST_F(HelpTest, AWindowThatIsOpenedAnewKnowsNothingOfTheSearchOfTheOneBefore) {
    HelpFile file(QStringLiteral(TEST_HELP));
    const auto open = [&](const char* topic) -> frmHelp& {
        auto& form = Open<frmHelp>();
        form.SetFile(&file);
        form.ShowTopic(QString::fromLatin1(topic));
        return form;
    };
    auto& before = open("INTRODUCTION.htm");
    BeginSearch(before, QStringLiteral("pelican"));
    Click(before, "cmdOK");

    auto& form = open("Notes.htm");
    WaitInLoop([&] { return file.IsSearching(); });
    Settle();

    EXPECT_TRUE(Rows(form, "lstFound").isEmpty());
    EXPECT_EQ(Shown(form), "Notes.htm");
    Click(form, "cmdOK"); // before its file goes
}

TEST_F(HelpTest, ASearchThatFindsNothingSaysSoAndOneWithoutAWordAsksForOne) {
    auto& form = OpenTopic("INTRODUCTION.htm");
    help_.Help().HHDisplaySearch();
    Search(form, QStringLiteral("pelican unicorn"));
    EXPECT_EQ(TextOf(form, "lblFound"), QStringLiteral("No topic has all these words."));
    EXPECT_TRUE(Rows(form, "lstFound").isEmpty());
    Search(form, QStringLiteral(" -\"* "));
    EXPECT_EQ(TextOf(form, "lblFound"), QStringLiteral("Please enter a word of letters or digits."));
}

TEST_F(HelpTest, WhatTheSearchEngineTakesForAnOperatorIsAWordLikeAnyOther) {
    auto& form = OpenTopic("INTRODUCTION.htm");
    help_.Help().HHDisplaySearch();
    Search(form, QStringLiteral("\"pelican\" AND (notes OR"));
    EXPECT_EQ(TextOf(form, "lblFound"), QStringLiteral("No topic has all these words."));
    Search(form, QStringLiteral("ink-jet"));
    EXPECT_EQ(Rows(form, "lstFound"), QStringList{QStringLiteral("Printers")});
}

TEST_F(HelpTest, TwoProgramsReadTheSameFileAndNeitherLeavesAnythingBehind) {
    QString first;
    {
        HelpFile one(QStringLiteral(TEST_HELP)), two(QStringLiteral(TEST_HELP));
        ASSERT_EQ(one.Condition(), HelpFile::State::Open);
        ASSERT_EQ(two.Condition(), HelpFile::State::Open);
        EXPECT_NE(one.TemporaryPath(), two.TemporaryPath());
        EXPECT_FALSE(one.Find(QStringLiteral("Notes.htm")).isEmpty());
        first = one.TemporaryPath();
        EXPECT_TRUE(QFileInfo::exists(first));
    }
    EXPECT_FALSE(QFileInfo::exists(first));
}

// ---- the window ----

TEST_F(HelpTest, TheViewerIsWorkedByTheKeyboardAlone) {
    auto& form = OpenTopic("INTRODUCTION.htm");
    help_.Help().HHDisplaySearch();
    Settle();
    TypeWords(form, QStringLiteral("pelican"));
    Key(form, Qt::Key_Return);
    WaitInLoop([&] { return TextOf(form, "lblFound") == ToQt(Text(msg::HelpSearching)); });
    Settle();
    EXPECT_EQ(form.focusWidget()->objectName(), QStringLiteral("lstFound"));
    const std::string first = Shown(form);
    Key(form, Qt::Key_Down);
    EXPECT_NE(Shown(form), first);

    Key(form, Qt::Key_F6);
    EXPECT_EQ(form.focusWidget()->objectName(), QStringLiteral("rtbTopic"));
    Key(form, Qt::Key_Left, Qt::AltModifier);
    EXPECT_EQ(Shown(form), first);
    Key(form, Qt::Key_Home, Qt::AltModifier);
    EXPECT_EQ(Shown(form), "INTRODUCTION.htm");

    help_.Help().HHDisplayIndex();
    Settle();
    TypeWords(form, QStringLiteral("printer"));
    Key(form, Qt::Key_Return);
    EXPECT_EQ(Shown(form), "Printers.htm");

    help_.Help().HHDisplayContents();
    Settle();
    Key(form, Qt::Key_Up);
    Key(form, Qt::Key_Return);
    EXPECT_EQ(Shown(form), "Notes.htm");

    Key(form, Qt::Key_F, Qt::ControlModifier);
    TypeWords(form, QStringLiteral("WRITE"));
    Key(form, Qt::Key_Return);
    EXPECT_EQ(Page(form).textCursor().selectedText(), QStringLiteral("Write"));
    Key(form, Qt::Key_Escape);
    EXPECT_FALSE(Visible(form, "barFind"));
    ASSERT_NE(IfLoaded<frmHelp>(), nullptr);
    Key(form, Qt::Key_Escape);
    EXPECT_EQ(IfLoaded<frmHelp>(), nullptr);
}

TEST_F(HelpTest, FindInThePageGoesOnceRoundAndSaysWhenThereIsNothing) {
    auto& form = OpenTopic("Printers.htm");
    Click(form, "cmdFind");
    auto& bar = dynamic_cast<FindBar&>(Control(form, "barFind"));
    auto* words = bar.findChild<QLineEdit*>(QStringLiteral("txtFind"));
    words->setText(QStringLiteral("ribbon"));
    emit bar.Find(false);
    const int at = Page(form).textCursor().position();
    emit bar.Find(false);
    EXPECT_EQ(Page(form).textCursor().position(), at);
    EXPECT_FALSE(Visible(form, "lblNotFound"));
    words->setText(QStringLiteral("unicorn"));
    emit bar.Find(true);
    EXPECT_TRUE(Visible(form, "lblNotFound"));
    EXPECT_EQ(Page(form).textCursor().position(), at);
}

TEST_F(HelpTest, TheWindowKeepsItsPlaceItsSizeAndTheSizeOfItsLetters) {
    auto& form = OpenTopic("Notes.htm");
    form.setGeometry(30, 40, 640, 420);
    Settle();
    const double before = Page(form).font().pointSizeF();
    Click(form, "cmdLarger");
    Click(form, "cmdLarger");
    Click(form, "cmdSmaller");
    Click(form, "cmdOK");

    auto& again = OpenTopic("Notes.htm");
    EXPECT_EQ(again.geometry(), QRect(30, 40, 640, 420));
    EXPECT_EQ(Page(again).font().pointSizeF(), before + 1);
    for (int k = 0; k < 40; ++k) Page(again).Zoom(-1);
    EXPECT_GT(Page(again).font().pointSizeF(), 2);
}

TEST_F(HelpTest, ATopicIsPrintedWithItsStepsAndTheRowsOfItsTables) {
    auto& form = OpenTopic("Notes.htm");
    const std::string pdf = Folder() + "notes.pdf";
    Operator_.ExpectPrinterDialog(Text::Path(std::string_view("Notes on paper", 14)), [&] {
        return NewPdfPrinter(pdf, UsualPaper(), QStringLiteral("Notes on paper"));
    });

    Click(form, "cmdPrint");

    QProcess reader;
    reader.start(QStringLiteral("pdftotext"), {QString::fromStdString(pdf), QStringLiteral("-")});
    ASSERT_TRUE(reader.waitForFinished());
    QStringList lines;
    for (const QString& line :
         QString::fromUtf8(reader.readAll()).split(QRegularExpression(QStringLiteral("[\n\f]")))) {
        if (!line.simplified().isEmpty()) lines << line.simplified();
    }
    EXPECT_EQ(
        lines.join(QLatin1Char('|')).toStdString(),
        "Notes|Écrire à main: a pelican takes notes.|1. Take a pen.|2. Write.|Key What it does|F1 Help");
}

// ---- from the screens ----

TEST_F(HelpTest, TheHelpIsUsedBesideAModalScreenAndItsEndIsNothingToIt) {
    auto& form = The<frmConvert>();
    std::string shown;
    bool modalStayed = false;
    QTimer::singleShot(0, &form, [&] {
        Settle();
        QTest::keyClick(&form, Qt::Key_F1);
        Settle();
        auto& help = The<frmHelp>();
        shown = Words(help);
        EXPECT_TRUE(help.isVisible());
        EXPECT_EQ(help.windowHandle()->transientParent(), form.windowHandle());
        help.Unload();
        Settle();
        modalStayed = form.isVisible();
        form.Unload();
    });
    form.Show(ShowMode::Modal);
    EXPECT_TRUE(modalStayed);
    EXPECT_TRUE(Has(shown, "IMPORTING_DATA_FILES_TO_PC.htm"));
}

TEST_F(HelpTest, TheHelpStaysWhenTheMainScreenTurnsToSomethingElse) {
    OpenTopic("Notes.htm");
    FormRegistry::Instance().UnloadSecondary();
    EXPECT_NE(IfLoaded<frmHelp>(), nullptr);
}

/// A form that counts how often it is told that it has the focus.
class Counting final : public Form {
    Q_OBJECT

public:
    int Times = 0;

protected:
    void Form_GotFocus() override { ++Times; }
};

TEST_F(HelpTest, AFormBelowIsToldWhenAFormAboveItGoesThoughTheHelpStands) {
    auto& below = Open<Counting>();
    WaitInLoop([&] { return below.Times == 0; });
    auto& above = Open<frmConvert>();
    OpenTopic("Notes.htm");
    above.Unload();
    Settle();
    EXPECT_EQ(below.Times, 2);
    The<frmHelp>().Unload();
    Settle();
    EXPECT_EQ(below.Times, 2);
}

TEST_F(HelpTest, ShiftF1ShowsTheHintOfTheControlThatHasTheFocus) {
    auto& form = Open<frmConvert>();
    auto& list = Control(form, "cmdHelp");
    list.setToolTip(QStringLiteral("Opens the <b>help</b>."));
    list.setFocus();
    QTest::keyClick(&list, Qt::Key_F1, Qt::ShiftModifier);
    const auto* popup = QApplication::activePopupWidget();
    ASSERT_NE(popup, nullptr);
    EXPECT_EQ(dynamic_cast<const QLabel&>(*popup).text(), QStringLiteral("Opens the help."));
    EXPECT_EQ(popup->font().family(), QStringLiteral("Arial"));
    EXPECT_EQ(popup->font().pointSize(), 10);
    QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Space);
    Settle();
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
}

TEST_F(HelpTest, TheWhatsThisPointerTellsTheHintOfWhatIsClicked) {
    auto& form = Open<frmConvert>();
    auto& button = Control(form, "cmdCancel");
    button.setToolTip(QStringLiteral("Leaves everything as it is."));
    help_.Help().HHInvokeWhatsThisHelp();
    EXPECT_TRUE(QWhatsThis::inWhatsThisMode());

    QTest::mouseClick(&button, Qt::LeftButton);

    ASSERT_NE(QApplication::activePopupWidget(), nullptr);
    EXPECT_EQ(dynamic_cast<const QLabel&>(*QApplication::activePopupWidget()).text(),
              QStringLiteral("Leaves everything as it is."));
    EXPECT_FALSE(QWhatsThis::inWhatsThisMode());
    EXPECT_NE(IfLoaded<frmConvert>(), nullptr);
    QApplication::activePopupWidget()->close();
    Settle();
}

TEST_F(HelpTest, APopUpShowsASectionOfAFileOfTheHelp) {
    HTMLHelp& help = help_.Help();
    help.HHPopupType = PopupType::File;
    help.HHPopupFile = "Hints.txt";
    help.HHPopupID = 2;
    help.HHPopupTextBold = help.HHPopupCustomColors = true;
    help.HHPopupCustomTextColor = 0x203040;
    help.HHDisplayPopup(ScreenPlace{100000, -50});
    auto* popup = dynamic_cast<QLabel*>(QApplication::activePopupWidget());
    ASSERT_NE(popup, nullptr);
    EXPECT_EQ(popup->text(), QStringLiteral("Press this to end.\nIt cannot be undone."));
    EXPECT_TRUE(popup->font().bold());
    EXPECT_EQ(popup->palette().color(QPalette::ToolTipText), QColor(0x20, 0x30, 0x40));
    const int frame = 4; // that the test's screen puts around a window
    const QRect room = popup->screen()->availableGeometry().adjusted(-frame, -frame, frame, frame);
    EXPECT_TRUE(room.contains(popup->geometry()));
    popup->close();
    Settle();
}

// ---- the program's own help ----

const std::pair<const char*, std::function<std::unique_ptr<FormBehaviour>()>> Forms[] = {
#define FORM(name) {#name, [] { return std::make_unique<name>(); }},
    ALL_FORMS(FORM)
#undef FORM
};

class ProgramsHelp : public HelpTest {
protected:
    ProgramsHelp() { Use(TRAMBLE_INSTALLED "/Tramble_Help.qch"); }
};

/// Whether an address is that of a page, and of this one.
bool IsPage(const QUrl& shown, const QString& topic) {
    return shown.scheme() == QLatin1String("qthelp") &&
           shown.fileName().compare(topic.section(QLatin1Char('#'), 0, 0), Qt::CaseInsensitive) == 0;
}

TEST_F(ProgramsHelp, F1AndEveryHelpButtonOfEveryScreenOpenItsPage) {
    auto& help = OpenTopic("Keyboard.htm");
    const QUrl elsewhere = Page(help).source();
    int buttons = 0;
    for (const auto& [name, make] : Forms) {
        SCOPED_TRACE(name);
        // Unloaded: some forms do their work when they are loaded.
        const auto form = make();
        QWidget& window = form->Window();
        form->WireControl(window);
        window.show();
        Page(help).ShowPage(elsewhere);
        QTest::keyClick(&window, Qt::Key_F1);
        // Parts of a screen, as the quadrants of the main screen, may have topics of their own.
        QStringList topics{ToQt(form->HelpTopic())};
        for (const QObject* part : window.findChildren<QObject*>()) {
            if (part->property("HelpTopic").isValid()) topics << part->property("HelpTopic").toString();
        }
        EXPECT_TRUE(std::any_of(topics.begin(), topics.end(),
                                [&](const QString& topic) { return IsPage(Page(help).source(), topic); }))
            << topics.front().toStdString() << " " << Shown(help);

        for (auto* button : window.findChildren<QAbstractButton*>()) {
            const QString control = button->objectName();
            const QVariant own = button->property("HelpTopic");
            if (control.endsWith(QLatin1String("HSUsers")) || control == QLatin1String("lblUA")) continue;
            if (control != QLatin1String("cmdHelp") && !control.startsWith(QLatin1String("img")) &&
                !own.isValid())
                continue;
            ++buttons;
            form->WireControl(*button);
            Page(help).ShowPage(elsewhere);
            button->click();
            const QUrl shown = Page(help).source();
            EXPECT_TRUE(shown != elsewhere && shown.scheme() == QLatin1String("qthelp"))
                << control.toStdString() << " " << Shown(help);
            EXPECT_TRUE(!own.isValid() || IsPage(shown, own.toString())) << control.toStdString();
        }
        window.hide();
    }
    EXPECT_GT(buttons, 20);
}

/// The main screen has its menu; the others come and go by themselves, or are the help.
TEST_F(ProgramsHelp, EachScreenThatWaitsForTheOperatorHasAButtonForIt) {
    const std::set<std::string> others{"frmMain1",       "frmMainSync",    "frmProgress", "frmAppend",
                                       "frmAppendAudit", "frmAppendIndex", "frmCopyDBF",  "frmHSProgress",
                                       "frmHSExit",      "frmPrinting",    "frmSetup",    "frmHelp"};
    std::size_t found = 0;
    for (const auto& [name, make] : Forms) {
        const auto form = make();
        const bool has = form->Window().findChild<QAbstractButton*>(QStringLiteral("cmdHelp")) != nullptr;
        EXPECT_EQ(has, !others.contains(name)) << name;
        found += others.contains(name);
    }
    EXPECT_EQ(found, others.size());
}

TEST_F(ProgramsHelp, NoLinkAndNoPictureOfAPageIsDead) {
    const HelpFile file(QStringLiteral(TRAMBLE_INSTALLED "/Tramble_Help.qch"));
    static const QRegularExpression target(QStringLiteral("(?:href|src)=\"([^\"]+)\""));
    int links = 0;
    for (const QUrl& page : file.Pages()) {
        auto matches = target.globalMatch(QString::fromUtf8(file.Data(page)));
        while (matches.hasNext()) {
            const QString link = matches.next().captured(1);
            ++links;
            EXPECT_FALSE(file.Find(page.resolved(QUrl(link))).isEmpty())
                << page.fileName().toStdString() << " leads to " << link.toStdString();
        }
    }
    EXPECT_GT(links, 40);
}

TEST_F(ProgramsHelp, EveryPageIsInTheContentsAndFoundByTheSearch) {
    auto& form = OpenTopic("INTRODUCTION.htm");
    for (const QUrl& page : HelpFile(QStringLiteral(TRAMBLE_INSTALLED "/Tramble_Help.qch")).Pages()) {
        OpenTopic(page.fileName().toStdString());
        EXPECT_TRUE(Tree(form).currentIndex().isValid()) << page.fileName().toStdString();
        EXPECT_FALSE(Page(form).documentTitle().isEmpty()) << page.fileName().toStdString();
    }
    help_.Help().HHDisplaySearch();
    Search(form, QStringLiteral("signature"));
    EXPECT_TRUE(Rows(form, "lstFound").contains(QStringLiteral("Signatures")))
        << Rows(form, "lstFound").join(QLatin1Char(',')).toStdString();
}

} // namespace

#include "HelpTest.moc"
