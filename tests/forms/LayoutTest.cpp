#include "LayoutCheck.h"
#include "core/Catalogue.h"
#include "core/Messages.h"
#include "core/SafeFile.h"
#include "forms/FormTest.h"
#include "platform/Registry.h"
#include "platform/WindowPlace.h"

#include <QAbstractButton>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

/// A window of a given number of buttons, one below the other, and a way out.
class TallForm final : public Form {
    Q_OBJECT

public:
    explicit TallForm(int buttons) {
        auto* column = new QVBoxLayout(this);
        for (int row = 1; row <= buttons; ++row) Add(*column, QStringLiteral("cmdRow_%1").arg(row));
        Add(*column, QStringLiteral("cmdOK"));
    }

private slots:
    void cmdRow_Click(int) {}
    void cmdOK_Click() { Unload(); }

private:
    void Add(QVBoxLayout& column, const QString& name) {
        auto* button = new QPushButton(name, this);
        button->setObjectName(name);
        column.addWidget(button);
    }
};

/// One that is opened by its name.
class PlacedForm final : public Form {
    Q_OBJECT

public:
    PlacedForm() { setProperty("KeepsPlace", true); }
};

namespace {

// ---- what the look for faults finds ----

class LayoutFaults : public FormTest {
protected:
    template <class Control>
    Control& Add(const char* name, const QRect& place, const char* text) {
        auto* control = new Control(QString::fromUtf8(text), &window_);
        control->setObjectName(QString::fromLatin1(name));
        control->setGeometry(place);
        return *control;
    }

    QString Layout() {
        Show();
        return LayoutProblems(window_).join(QLatin1Char('\n'));
    }
    QString Keys() {
        Show();
        return KeyProblems(window_).join(QLatin1Char('\n'));
    }
    QString Contrast() {
        Show();
        return ContrastProblems(window_).join(QLatin1Char('\n'));
    }

    QDialog window_;

private:
    void Show() {
        window_.resize(400, 300);
        window_.show();
        Settle();
    }
};

TEST_F(LayoutFaults, NothingIsFoundWhereAllIsWell) {
    Add<QLabel>("lblName", {10, 10, 200, 30}, "Name");
    Add<QPushButton>("cmdOK", {10, 60, 100, 30}, "Ok");

    EXPECT_EQ(Layout() + Keys() + Contrast(), QString());
}

TEST_F(LayoutFaults, ALabelAButtonAndAWrappedTextThatAreCut) {
    Add<QLabel>("lblCut", {10, 10, 20, 30}, "A longer name");
    Add<QPushButton>("cmdCut", {10, 60, 30, 30}, "Synchronise");
    Add<QLabel>("lblLow", {10, 120, 100, 16}, "A text of several lines when it is wrapped").setWordWrap(true);

    const QString found = Layout();

    EXPECT_TRUE(found.contains(QStringLiteral("lblCut is cut"))) << found.toStdString();
    EXPECT_TRUE(found.contains(QStringLiteral("cmdCut is cut"))) << found.toStdString();
    EXPECT_TRUE(found.contains(QStringLiteral("lblLow is cut"))) << found.toStdString();
}

TEST_F(LayoutFaults, ControlsUponEachOtherAndBeyondTheWindow) {
    Add<QPushButton>("cmdOne", {10, 10, 100, 30}, "One");
    Add<QPushButton>("cmdTwo", {100, 10, 100, 30}, "Two");
    Add<QPushButton>("cmdOut", {350, 100, 100, 30}, "Out");

    const QString found = Layout();

    EXPECT_TRUE(found.contains(QStringLiteral("cmdTwo lies upon cmdOne"))) << found.toStdString();
    EXPECT_TRUE(found.contains(QStringLiteral("cmdOut lies beyond"))) << found.toStdString();
}

TEST_F(LayoutFaults, ATabKeyThatJumpsAndAControlWithoutAName) {
    auto* line = new QLineEdit(&window_);
    line->setObjectName(QStringLiteral("txtNameless"));
    line->setGeometry(10, 10, 100, 30);
    Add<QPushButton>("cmdBelow", {10, 200, 100, 30}, "Below");
    Add<QPushButton>("cmdBetween", {10, 100, 100, 30}, "Between");

    const QString found = Keys();

    EXPECT_TRUE(found.contains(QStringLiteral("txtNameless has no name"))) << found.toStdString();
    EXPECT_TRUE(found.contains(QStringLiteral("cmdBetween only behind cmdBelow"))) << found.toStdString();
    EXPECT_TRUE(found.contains(QStringLiteral("Esc does nothing"))) << found.toStdString();
}

TEST_F(LayoutFaults, TheTabOrderIsARingAndBeginsAtTheTop) {
    Add<QPushButton>("cmdOK", {10, 200, 100, 30}, "Ok");
    Add<QPushButton>("cmdAbove", {10, 10, 100, 30}, "Above");
    Add<QPushButton>("cmdMiddle", {10, 100, 100, 30}, "Middle");

    EXPECT_EQ(Keys(), QString());
}

TEST_F(LayoutFaults, EnterThatDestroysSomething) {
    Add<QPushButton>("cmdOK", {10, 10, 100, 30}, "Ok");
    Add<QPushButton>("cmdDelete", {10, 60, 100, 30}, "Delete").setDefault(true);

    EXPECT_EQ(Keys(), QStringLiteral("Enter presses cmdDelete"));
}

TEST_F(LayoutFaults, ATextThatHardlyStandsOut) {
    auto& label = Add<QLabel>("lblFaint", {10, 10, 200, 30}, "Hardly to be read");
    QPalette faint = label.palette();
    faint.setColor(QPalette::WindowText, QColor(0xc0, 0xc0, 0xc0));
    label.setPalette(faint);

    EXPECT_TRUE(Contrast().startsWith(QStringLiteral("lblFaint has a contrast of")))
        << Contrast().toStdString();
}

TEST_F(LayoutFaults, TextsAThirdLongerAreACatalogue) {
    const std::string file = Folder() + "stretched.tsv";
    WriteStretchedTexts(file);

    // A label in a column of fixed room stays as it is.
    const QString refusals = QString::fromStdString(LoadMessages(file));
    for (const QString& refused : refusals.split(QLatin1Char('\n'), Qt::SkipEmptyParts))
        EXPECT_TRUE(refused.endsWith(QStringLiteral("longer than 29 characters"))) << refused.toStdString();
    EXPECT_EQ(CatalogueText(msg::Ok).size(), KeyOf(msg::Ok).size() + 1);
    EXPECT_GE(3 * CatalogueText(msg::InvalidFormat).size(), 4 * (KeyOf(msg::InvalidFormat).size() - 1));
    LoadMessages({});
}

// ---- a window that is larger than the screen ----

class LargeWindow : public FormTest {};

TEST_F(LargeWindow, OneThatFitsDoesNotScroll) {
    auto& form = static_cast<Form&>(FormRegistry::Instance().Adopt(std::make_unique<TallForm>(5)));
    form.Show();
    Settle();

    EXPECT_FALSE(Scrolls(form));
}

TEST_F(LargeWindow, StaysWithinTheScreenAndAllOfItIsReachedByKeys) {
    auto& form = static_cast<Form&>(FormRegistry::Instance().Adopt(std::make_unique<TallForm>(60)));
    form.Show();
    Settle();

    EXPECT_TRUE(Scrolls(form));
    EXPECT_EQ(LayoutProblems(form).join(QLatin1Char('\n')).toStdString(), "");
    auto& ok = static_cast<QAbstractButton&>(Control(form, "cmdOK"));
    EXPECT_TRUE(ok.visibleRegion().isEmpty());

    Control(form, "cmdRow_1").setFocus();
    Press(form, "cmdRow_1", Qt::Key_Backtab);
    Settle();

    EXPECT_FALSE(ok.visibleRegion().isEmpty());
    Click(form, "cmdOK");
    EXPECT_EQ(FormRegistry::Instance().Find("TallForm"), nullptr);
}

TEST_F(LargeWindow, OneThatBecomesTooLargeScrollsFromThenOn) {
    auto& form = static_cast<Form&>(FormRegistry::Instance().Adopt(std::make_unique<TallForm>(5)));
    form.Show();
    Settle();

    Control(form, "cmdRow_1").setMinimumHeight(2000);
    Settle();

    EXPECT_TRUE(Scrolls(form));
    EXPECT_LE(form.height(), form.screen()->availableGeometry().height());
}

// ---- remembered places ----

class Places : public FormTest {
protected:
    Places() { GivenAppDirectory(); }

    static PlacedForm& Shown() {
        auto& form = The<PlacedForm>();
        form.Show();
        Settle();
        return form;
    }

    static QRect Opened() {
        auto& form = Shown();
        const QRect place(form.pos(), form.size());
        form.Unload();
        return place;
    }
};

TEST_F(Places, AWindowOpensWhereItWasLeft) {
    auto& form = Shown();
    form.move(200, 120);
    form.resize(420, 310);
    form.Unload();

    EXPECT_EQ(Opened(), QRect(200, 120, 420, 310));
}

TEST_F(Places, AWindowThatWasDrawnWiderThanAScreenStaysSoWhenATextChanges) {
    auto& form = Shown();
    const int wide = form.screen()->availableGeometry().width() + 300;
    form.resize(wide, 310);
    QCoreApplication::postEvent(&form, new QEvent(QEvent::LayoutRequest));
    Settle();

    EXPECT_EQ(form.width(), wide);
}

TEST_F(Places, APlaceOnAScreenThatHasGoneIsNotTaken) {
    Registry::SetWindowPlace(QStringLiteral("PlacedForm"), {5000, 5000, 420, 310, 0});

    EXPECT_TRUE(QGuiApplication::primaryScreen()->geometry().contains(Opened().topLeft()));
}

TEST_F(Places, APlaceThatCannotBeReadIsPassedOver) {
    Registry::SetWindowPlace(QStringLiteral("PlacedForm"), {1, 2, 3});

    EXPECT_TRUE(Opened().isValid());
}

TEST_F(Places, AWindowLargerThanTheScreenIsCutToIt) {
    EXPECT_EQ(PlaceOnScreen({-100, 0, 1000, 300}), QRect(0, 0, 900, 300));
    EXPECT_FALSE(PlaceOnScreen({10, 10, 0, 0}).has_value());
}

} // namespace

#include "LayoutTest.moc"
