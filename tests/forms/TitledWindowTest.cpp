#include "platform/TitledWindow.h"

#include "forms/HotSyncTest.h"
#include "platform/Convert.h"
#include "platform/LocalName.h"
#include "support/Fails.h"

#include <QDialog>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLocalSocket>
#include <QPushButton>
#include <QThread>
#include <QVBoxLayout>
#include <QWindow>

namespace {

const QString Title = QStringLiteral("Hotsync Progress");

/// A window with two buttons, of which Enter presses the second.
class Shown : public QDialog {
public:
    explicit Shown(const std::string& folder) : announced(*this, PathToQt(folder)) {
        setWindowTitle(Title);
        auto* layout = new QVBoxLayout(this);
        for (QPushButton* button : {&first, &second}) layout->addWidget(button);
        first.setAutoDefault(false);
        second.setDefault(true);
        connect(&first, &QPushButton::clicked, this, [this] { ++firstClicks; });
        connect(&second, &QPushButton::clicked, this, [this] { ++secondClicks; });
    }

    QPushButton first, second;
    int firstClicks = 0, secondClicks = 0;
    TitledWindow announced;
};

class WindowOfATitle : public HotSyncTest {
protected:
    WindowOfATitle() { std::filesystem::create_directories(ManagerFolder()); }

    /// Does something as another program would: while this one handles its events.
    static void AsAnotherProgram(const std::function<void()>& deed) {
        const std::unique_ptr<QThread> other(QThread::create(deed));
        other->start();
        WaitUntil([&] { return other->isFinished(); });
    }

    QString SocketName() const {
        return LocalName(QStringLiteral("ZUKWindow-"), PathToQt(ManagerFolder()), QLatin1Char('\n') + Title);
    }

    Shown window_{ManagerFolder()};
};

TEST_F(WindowOfATitle, IsFoundWhileItIsShown) {
    EXPECT_FALSE(FindWindow(Title));

    window_.show();
    EXPECT_TRUE(FindWindow(Title));
    EXPECT_FALSE(FindWindow(QStringLiteral("Setup")));

    window_.hide();
    EXPECT_FALSE(FindWindow(Title));

    window_.show();
    EXPECT_TRUE(FindWindow(Title));
}

TEST_F(WindowOfATitle, IsFoundUnderTheTitleThatItHas) {
    window_.show();

    window_.setWindowTitle(QStringLiteral("Setup"));

    EXPECT_FALSE(FindWindow(Title));
    EXPECT_TRUE(FindWindow(QStringLiteral("Setup")));
}

TEST_F(WindowOfATitle, OfAnotherManagerIsNotFound) {
    Shown other(Folder());
    other.show();

    EXPECT_FALSE(FindWindow(Title));
}

TEST_F(WindowOfATitle, IsNotFoundWhenNoManagerIsRegistered) {
    window_.show();
    Registry::SetHotSyncManager("");

    EXPECT_FALSE(FindWindow(Title));
}

TEST_F(WindowOfATitle, IsGoneForGoodWhenAnotherOfItsTitleTakesItsPlace) {
    window_.show();
    auto found = FindWindow(Title);
    ASSERT_TRUE(found);
    WaitUntil([&] { return window_.announced.WasFound(); });
    EXPECT_TRUE(found->IsThere());

    window_.hide();
    window_.show();

    WaitUntil([&] { return !found->IsThere(); });
    EXPECT_TRUE(FindWindow(Title));
    found->BringToFront();
    found->SendKeys("{ENTER}");
    found->SetPlacement(QRect(1, 1, 300, 200), true);
    EXPECT_FALSE(found->Placement());
}

TEST_F(WindowOfATitle, ThatWasDestroyedIsGone) {
    auto other = std::make_unique<Shown>(ManagerFolder());
    other->show();
    auto found = FindWindow(Title);
    ASSERT_TRUE(found);

    other.reset();

    WaitUntil([&] { return !found->IsThere(); });
    EXPECT_FALSE(FindWindow(Title));
}

TEST_F(WindowOfATitle, KnowsWhetherItWasFoundSinceItWasShown) {
    int times = 0;
    window_.announced.Found = [&] { ++times; };
    window_.show();
    Settle();
    EXPECT_FALSE(window_.announced.WasFound());

    for (int k = 0; k < 2; ++k) EXPECT_TRUE(FindWindow(Title));
    WaitUntil([&] { return window_.announced.WasFound(); });
    Settle();
    EXPECT_EQ(times, 1);

    window_.hide();
    window_.show();
    EXPECT_FALSE(window_.announced.WasFound());
}

TEST_F(WindowOfATitle, HasItsDefaultButtonPressedByEnter) {
    window_.show();

    FindWindow(Title)->SendKeys("{ENTER}");

    WaitUntil([&] { return window_.secondClicks > 0; });
    Settle();
    EXPECT_EQ(window_.secondClicks, 1);
    EXPECT_EQ(window_.firstClicks, 0);
}

TEST_F(WindowOfATitle, TakesNoOtherKeys) {
    window_.show();

    EXPECT_EQ(FailureNumber([] { FindWindow(Title)->SendKeys("{ESC}"); }), 5);
}

TEST_F(WindowOfATitle, BelowAModalOneHearsNoKey) {
    window_.show();
    QDialog above;
    above.setModal(true);
    above.show();

    FindWindow(Title)->SendKeys("{ENTER}");
    WaitUntil([&] { return window_.announced.WasFound(); });
    for (int k = 0; k < 5; ++k) Settle();

    EXPECT_EQ(window_.secondClicks, 0);
}

TEST_F(WindowOfATitle, WhoseDefaultButtonIsDisabledPressesNothing) {
    window_.show();
    window_.second.setEnabled(false);

    FindWindow(Title)->SendKeys("{ENTER}");
    WaitUntil([&] { return window_.announced.WasFound(); });
    for (int k = 0; k < 5; ++k) Settle();

    EXPECT_EQ(window_.firstClicks + window_.secondClicks, 0);
}

TEST_F(WindowOfATitle, TellsItsPlaceAndTakesAnother) {
    window_.setGeometry(40, 50, 300, 200);
    window_.show();
    Settle();
    std::optional<QRect> before;
    std::optional<QRect> after;

    AsAnotherProgram([&] {
        auto found = FindWindow(Title);
        before = found->Placement();
        found->SetPlacement(QRect(-10, 20, 400, 250), true);
        found->SetPlacement(QRect(100, 120, 410, 260), false);
        after = found->Placement();
    });

    EXPECT_EQ(before, QRect(40, 50, 300, 200));
    EXPECT_EQ(after, QRect(100, 120, 410, 260));
    EXPECT_EQ(window_.geometry(), QRect(100, 120, 410, 260));
    EXPECT_TRUE(window_.isVisible());
    EXPECT_FALSE(window_.windowHandle()->flags() & Qt::WindowStaysOnTopHint);
}

TEST_F(WindowOfATitle, OfAProgramThatDoesNotAnswerHasNoPlace) {
    window_.show();

    EXPECT_FALSE(FindWindow(Title)->Placement());
}

TEST_F(WindowOfATitle, TakesAPlaceFromAProgramThatDidNotWaitForItsAnswer) {
    window_.show();
    {
        auto found = FindWindow(Title);
        found->Placement();
        found->SetPlacement(QRect(100, 120, 410, 260), false);
    }

    WaitUntil([&] { return window_.geometry() == QRect(100, 120, 410, 260); });
}

TEST_F(WindowOfATitle, WhoseProgramDiedIsNotFoundAndHindersNoNewOne) {
    QFile left(QDir::tempPath() + QLatin1Char('/') + SocketName());
    ASSERT_TRUE(left.open(QIODevice::WriteOnly));
    left.close();
    EXPECT_FALSE(FindWindow(Title));

    window_.show();

    EXPECT_TRUE(FindWindow(Title));
}

TEST_F(WindowOfATitle, ClosesAConnectionThatAsksForWhatThereIsNot) {
    window_.setGeometry(40, 50, 300, 200);
    window_.show();
    const std::string lines[] = {"\n",
                                 "NONSENSE\n",
                                 "KEYS {ESC}\n",
                                 "PLACE 1 2 3\n",
                                 "PLACE 1 2 x 4 NORMAL\n",
                                 "PLACE 1 2 0 4 NORMAL\n",
                                 "PLACE 1 2 99999999 4 NORMAL\n",
                                 std::string(1000, 'x')};
    for (const std::string& line : lines) {
        QLocalSocket socket;
        socket.connectToServer(SocketName());
        ASSERT_TRUE(socket.waitForConnected());
        socket.write(line.data(), static_cast<qint64>(line.size()));
        socket.flush();
        WaitUntil([&] { return socket.state() == QLocalSocket::UnconnectedState; });
    }
    EXPECT_EQ(window_.geometry(), QRect(40, 50, 300, 200));
    EXPECT_TRUE(FindWindow(Title));
}

} // namespace
