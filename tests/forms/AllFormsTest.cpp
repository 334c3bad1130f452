#include "AllForms.h"
#include "core/Catalogue.h"
#include "core/Paths.h"
#include "core/SafeFile.h"
#include "forms/FormTest.h"

#include <QAbstractButton>
#include <QAction>
#include <QLabel>
#include <QPushButton>
#include <QRegularExpression>

#include <filesystem>
#include <functional>
#include <set>

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

TEST_P(AllForms, EveryTagIsATextOfTheCatalogueAndNoCaptionStandsInTheLayout) {
    QList<QObject*> all = form_->Window().findChildren<QObject*>();
    all << &form_->Window();
    for (const QObject* object : all) {
        const std::string name = object->objectName().toStdString();
        for (const char* property : {"Tag", "TipTag"}) {
            const QVariant tag = object->property(property);
            if (!tag.isValid()) continue;
            EXPECT_TRUE(CatalogueHas({static_cast<std::uint16_t>(tag.toInt())}))
                << name << " " << tag.toInt();
        }
        if (name.empty() || name.starts_with("qt_")) continue;
        if (const auto* button = qobject_cast<const QAbstractButton*>(object)) {
            EXPECT_EQ(button->text().toStdString(), "") << name;
        }
        if (const auto* label = qobject_cast<const QLabel*>(object)) {
            EXPECT_EQ(label->text().toStdString(), "") << name;
        }
    }
}

TEST_P(AllForms, AButtonWithoutATextHasAnAccessibleName) {
    FillCaptions(form_->Window());
    for (const auto* button : form_->Window().findChildren<QAbstractButton*>()) {
        const QString name = button->objectName();
        if (name.isEmpty() || name.startsWith(QLatin1String("qt_"))) continue;
        // The two buttons of the shared question are captioned by its caller.
        if (name == QLatin1String("cmdYes") || name == QLatin1String("cmdNo")) continue;
        EXPECT_FALSE(button->text().isEmpty() && button->accessibleName().isEmpty()) << name.toStdString();
    }
}

TEST_P(AllForms, TwoEntriesThatShowTogetherDoNotShareAMnemonic) {
    FillCaptions(form_->Window());
    const auto mnemonic = [](const QString& text) {
        const qsizetype mark = text.indexOf(QLatin1Char('&'));
        return mark < 0 || mark + 1 >= text.size() ? QString() : text.mid(mark + 1, 1).toLower();
    };
    for (const auto* menu : form_->Window().findChildren<QMenu*>()) {
        std::set<QString> seen;
        for (const auto* action : menu->actions()) {
            const QString letter = mnemonic(action->text());
            if (letter.isEmpty() || letter == QLatin1String("&")) continue;
            EXPECT_TRUE(seen.insert(letter).second)
                << menu->objectName().toStdString() << " " << letter.toStdString();
        }
    }
    std::set<QString> seen;
    for (const auto* button : form_->Window().findChildren<QAbstractButton*>()) {
        const QString letter = mnemonic(button->text());
        if (letter.isEmpty()) continue;
        EXPECT_TRUE(seen.insert(letter).second)
            << button->objectName().toStdString() << " " << letter.toStdString();
    }
}

TEST_P(AllForms, OpensWithinASmallScreen) {
    FillCaptions(form_->Window());
    form_->Window().ensurePolished();
    EXPECT_LE(form_->Window().minimumSizeHint().width(), 1024);
    EXPECT_LE(form_->Window().minimumSizeHint().height(), 768);
    EXPECT_LE(form_->Window().width(), 1024);
    EXPECT_LE(form_->Window().height(), 768);
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

// ---- the wiring itself ----

class Strict : public Form {
public:
    explicit Strict(const char* name) {
        auto* button = new QPushButton(this);
        button->setObjectName(QString::fromLatin1(name));
    }
};

TEST_F(FormTest, ALiveButtonThatNothingHandlesIsFound) {
    Strict form("cmdNobody");

    EXPECT_EQ(form.WiringProblems(), QStringList{QStringLiteral("QDialog: nothing handles cmdNobody")});
}

} // namespace
