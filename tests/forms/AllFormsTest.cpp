#include "AllForms.h"
#include "core/Catalogue.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "forms/FormTest.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAction>
#include <QCalendarWidget>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QRegularExpression>
#include <QStackedWidget>
#include <QTabWidget>
#include <QToolButton>
#include <QTreeWidget>

#include <filesystem>
#include <functional>
#include <map>
#include <set>
#include <vector>

/// A form to try the wiring on.
class Wired final : public Form {
    Q_OBJECT

private slots:
    void cmdPress_Click() {}
    void lstRows_DblClick() {}
    void cmdBrick_Click(int) {}
};

/// A part of a form to try the wiring on.
class WiredPart final : public FormPart {
    Q_OBJECT

public:
    explicit WiredPart(Form& form) : FormPart(form) {}

private slots:
    void cmdPart_Click() {}
};

namespace {

struct AnyForm {
    const char* Name;
    std::function<std::unique_ptr<FormBehaviour>()> Make;
};

// frmMain1 and frmProgress do their work while they are loaded; the forms are looked at unloaded.
const AnyForm Forms[] = {
#define FORM(name) {#name, [] { return std::make_unique<name>(); }},
    ALL_FORMS(FORM)
#undef FORM
};

class AllForms : public FormTest, public ::testing::WithParamInterface<AnyForm> {
protected:
    std::unique_ptr<FormBehaviour> form_ = GetParam().Make();
};

TEST_P(AllForms, EveryHandlerHasItsControlAndEveryLiveControlItsHandler) {
    EXPECT_EQ(form_->WiringProblems().join(QStringLiteral("\n")).toStdString(), "");
}

TEST_P(AllForms, EveryTagIsATextOfTheCatalogue) {
    QList<QObject*> all = form_->Window().findChildren<QObject*>();
    all << &form_->Window();
    for (const QObject* object : all) {
        const std::string name = object->objectName().toStdString();
        // That of an input control is the place of its field.
        const bool isInput = qobject_cast<const QLineEdit*>(object) || qobject_cast<const QComboBox*>(object);
        for (const char* property : {"Tag", "TipTag"}) {
            if (isInput && property == std::string_view("Tag")) continue;
            const QVariant tag = object->property(property);
            if (!tag.isValid()) continue;
            EXPECT_TRUE(CatalogueHas({static_cast<std::uint16_t>(tag.toInt())}))
                << name << " " << tag.toInt();
        }
    }
}

/// What a control is called when it is read aloud; empty when nobody could tell.
QString SpokenName(const QWidget& control) {
    if (!control.accessibleName().isEmpty()) return control.accessibleName();
    // The toolkit does not look for the label before a list.
    if (qobject_cast<const QAbstractItemView*>(&control)) return {};
    if (const auto* button = qobject_cast<const QAbstractButton*>(&control)) return button->text();
    for (const auto* label : control.window()->findChildren<QLabel*>()) {
        if (label->buddy() == &control) return label->text();
    }
    return {};
}

/// What a calendar has inside is the toolkit's.
bool IsOfACalendar(const QObject& object) {
    const QObject* around = &object;
    while (around && !qobject_cast<const QCalendarWidget*>(around)) around = around->parent();
    return around != nullptr;
}

TEST_P(AllForms, WhateverAKeyReachesCanBeReadAloud) {
    FillCaptions(form_->Window());
    EXPECT_FALSE(form_->Window().windowTitle().isEmpty());
    for (const auto* control : form_->Window().findChildren<QWidget*>()) {
        const QString name = control->objectName();
        if (name.isEmpty() || name.startsWith(QLatin1String("qt_"))) continue;
        if ((control->focusPolicy() & Qt::TabFocus) == 0) continue;
        // The two buttons of the shared question are captioned by its caller.
        if (name == QLatin1String("cmdYes") || name == QLatin1String("cmdNo")) continue;
        EXPECT_FALSE(SpokenName(*control).isEmpty()) << name.toStdString();
    }
    for (const auto* action : form_->Window().findChildren<QAction*>()) {
        if (IsOfACalendar(*action)) continue;
        EXPECT_TRUE(action->isSeparator() || !action->text().isEmpty()) << action->objectName().toStdString();
    }
}

TEST(Captions, ALabelShowsLettersAndNoMarkup) {
    QWidget window;
    const QLabel label(QStringLiteral("<img src=\"/etc/passwd\">"), &window);

    FillCaptions(window);

    EXPECT_EQ(label.textFormat(), Qt::PlainText);
}

TEST_P(AllForms, EveryButtonIsReachedByTheTabKey) {
    for (const auto* button : form_->Window().findChildren<QAbstractButton*>()) {
        if (button->objectName().isEmpty() || button->objectName().startsWith(QLatin1String("qt_"))) continue;
        EXPECT_TRUE(button->focusPolicy() & Qt::TabFocus) << button->objectName().toStdString();
    }
}

/// Two controls on different pages of a stack, as that of a tab strip, never do.
bool ShowTogether(const QWidget& a, const QWidget& b) {
    const auto pageOf = [](const QStackedWidget& stack, const QWidget& control) {
        for (int page = 0; page < stack.count(); ++page) {
            if (stack.widget(page)->isAncestorOf(&control)) return page;
        }
        return -1;
    };
    for (const auto* stack : a.window()->findChildren<QStackedWidget*>()) {
        const int page = pageOf(*stack, a), other = pageOf(*stack, b);
        if (page >= 0 && other >= 0 && page != other) return false;
    }
    return true;
}

void ExpectMnemonicsOfTheirOwn(const QWidget& window) {
    const auto mnemonic = [](const QString& text) {
        const qsizetype mark = text.indexOf(QLatin1Char('&'));
        const QString letter = mark < 0 ? QString() : text.mid(mark + 1, 1).toLower();
        return letter == QLatin1String("&") ? QString() : letter; // an ampersand that is shown
    };
    for (const auto* menu : window.findChildren<QMenu*>()) {
        std::set<QString> seen;
        for (const auto* action : menu->actions()) {
            const QString letter = mnemonic(action->text());
            if (letter.isEmpty()) continue;
            EXPECT_TRUE(seen.insert(letter).second)
                << menu->objectName().toStdString() << " " << letter.toStdString();
        }
    }
    std::map<QString, std::vector<const QWidget*>> bearers;
    const auto add = [&](const QWidget& control, const QString& text) {
        const QString letter = mnemonic(text);
        if (letter.isEmpty()) return;
        for (const QWidget* other : bearers[letter]) {
            EXPECT_FALSE(ShowTogether(control, *other))
                << control.objectName().toStdString() << " and " << other->objectName().toStdString() << ": "
                << letter.toStdString();
        }
        bearers[letter].push_back(&control);
    };
    for (const auto* button : window.findChildren<QAbstractButton*>()) add(*button, button->text());
    for (const auto* label : window.findChildren<QLabel*>()) {
        if (label->buddy()) add(*label, label->text());
    }
    for (const auto* tabs : window.findChildren<QTabWidget*>()) {
        for (int tab = 0; tab < tabs->count(); ++tab) add(*tabs, tabs->tabText(tab));
    }
    for (const auto* bar : window.findChildren<QMenuBar*>()) {
        for (const auto* action : bar->actions()) {
            EXPECT_FALSE(mnemonic(action->text()).isEmpty()) << action->text().toStdString();
            add(*bar, action->text());
        }
    }
}

TEST_P(AllForms, TwoEntriesThatShowTogetherDoNotShareAMnemonic) {
    FillCaptions(form_->Window());
    ExpectMnemonicsOfTheirOwn(form_->Window());
}

void ExpectToFitASmallScreen(QWidget& window) {
    window.ensurePolished();
    EXPECT_LE(window.minimumSizeHint().width(), 1024);
    EXPECT_LE(window.minimumSizeHint().height(), 768);
    EXPECT_LE(window.width(), 1024);
    EXPECT_LE(window.height(), 768);
}

TEST_P(AllForms, OpensWithinASmallScreen) {
    FillCaptions(form_->Window());
    ExpectToFitASmallScreen(form_->Window());
}

TEST_P(AllForms, HoldsUpInEachLanguage) {
    const std::string folder = std::string(TRAMBLE_SOURCE) + "/resources/languages/";
    for (const std::string& file : FilesWithExtension(folder, ".tsv")) {
        SCOPED_TRACE(file);
        EXPECT_EQ(LoadMessages(folder + file), "");
        form_.reset();
        form_ = GetParam().Make(); // what it says by itself is in the language too
        FillCaptions(form_->Window());
        ExpectMnemonicsOfTheirOwn(form_->Window());
        ExpectToFitASmallScreen(form_->Window());
    }
}

INSTANTIATE_TEST_SUITE_P(Program, AllForms, ::testing::ValuesIn(Forms),
                         [](const auto& each) { return std::string(each.param.Name); });

// ---- the catalogue ----

std::string SourceText() {
    std::string all;
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(std::string(TRAMBLE_SOURCE) + "/src")) {
        const std::string extension = entry.path().extension().string();
        if (extension == ".cpp" || extension == ".h" || extension == ".ui")
            all += ReadWholeFile(entry.path().string());
    }
    return all;
}

TEST(CatalogueUse, EveryRowIsFetchedByTheCodeOrByAControlsTag) {
    const std::string source = SourceText();
    std::set<QString> words;
    const QRegularExpression fetched(QStringLiteral("msg::(\\w+)|<string notr=\"true\">(\\d+)</string>"));
    for (auto it = fetched.globalMatch(QString::fromStdString(source)); it.hasNext();) {
        const QRegularExpressionMatch match = it.next();
        words.insert(match.captured(1) + match.captured(2));
    }
    const QString table =
        QString::fromStdString(ReadWholeFile(std::string(TRAMBLE_SOURCE) + "/resources/messages.tsv"));
    const QRegularExpression row(QStringLiteral("^(\\d+)\t(\\w+)\t"), QRegularExpression::MultilineOption);
    int rows = 0;
    for (auto it = row.globalMatch(table); it.hasNext(); ++rows) {
        const QRegularExpressionMatch match = it.next();
        EXPECT_TRUE(words.contains(match.captured(1)) || words.contains(match.captured(2)))
            << "nothing fetches " << match.captured(0).toStdString();
    }
    EXPECT_GT(rows, 100);
}

TEST(CatalogueUse, NoLayoutHoldsATextOfItsOwn) {
    const QRegularExpression text(QStringLiteral("<string[^>]*>([^<]*)</string>"));
    // Of the catalogue the number, of the help the topic.
    const QRegularExpression number(QStringLiteral("^([0-9]+|\\w+[.]htm)$"));
    int tags = 0;
    for (auto it = text.globalMatch(QString::fromStdString(SourceText())); it.hasNext(); ++tags) {
        const QString words = it.next().captured(1);
        EXPECT_TRUE(number.match(words).hasMatch()) << words.toStdString();
    }
    EXPECT_GT(tags, 100);
}

// ---- the wiring itself ----

class Wiring : public FormTest {
protected:
    template <class Control>
    Control& Add(const char* name) {
        auto* control = new Control(&form_);
        control->setObjectName(QString::fromLatin1(name));
        return *control;
    }

    QStringList Problems() const { return form_.WiringProblems(); }

    static QStringList Only(const char* problem) { return {QString::fromLatin1(problem)}; }

    Wired form_;
};

TEST_F(Wiring, IsInOrderWhenEveryHandlerHasItsControl) {
    Add<QPushButton>("cmdPress");
    Add<QTreeWidget>("lstRows");

    EXPECT_EQ(Problems(), QStringList());
}

TEST_F(Wiring, AHandlerWithoutAControlIsFound) {
    Add<QTreeWidget>("lstRows");

    EXPECT_EQ(Problems(), Only("Wired has no control cmdPress"));
}

TEST_F(Wiring, AHandlerForAnEventThatItsControlDoesNotHaveIsFound) {
    Add<QPushButton>("cmdPress");
    Add<QPushButton>("lstRows");

    EXPECT_EQ(Problems(), Only("Wired: lstRows has no event DblClick"));
}

TEST_F(Wiring, ALiveControlThatNothingHandlesIsFoundWhateverItsKind) {
    Add<QPushButton>("cmdPress");
    Add<QTreeWidget>("lstRows");
    Add<QPushButton>("cmdNobody");
    Add<QToolButton>("lblNobody").setCheckable(true);
    Add<QAction>("mnuNobody").setCheckable(true);
    Add<QLabel>("imgNobody").setCursor(Qt::PointingHandCursor);
    Add<QPushButton>("");
    Add<QPushButton>("cmdDisabled").setEnabled(false);
    Add<QCheckBox>("chkState");
    Add<QLabel>("lblPlain");

    EXPECT_EQ(Problems(), (QStringList{QStringLiteral("Wired: nothing handles cmdNobody"),
                                       QStringLiteral("Wired: nothing handles lblNobody"),
                                       QStringLiteral("Wired: nothing handles mnuNobody"),
                                       QStringLiteral("Wired: nothing handles imgNobody"),
                                       QStringLiteral("Wired: nothing handles a nameless QPushButton")}));
}

TEST_F(Wiring, AHandlerOfAPartIsOneOfTheForm) {
    Add<QPushButton>("cmdPress");
    Add<QTreeWidget>("lstRows");
    new WiredPart(form_);

    EXPECT_EQ(Problems(), Only("Wired has no control cmdPart"));

    Add<QPushButton>("cmdPart");
    EXPECT_EQ(Problems(), QStringList());
}

TEST_F(Wiring, TheElementsOfAnArrayAreServedByItsHandler) {
    Add<QPushButton>("cmdPress");
    Add<QTreeWidget>("lstRows");
    Add<QToolButton>("cmdBrick_1");
    Add<QToolButton>("cmdBrickwork_1");

    EXPECT_EQ(Problems(), Only("Wired: nothing handles cmdBrickwork_1"));
}

} // namespace

#include "AllFormsTest.moc"
