#include "driver/DriverClient.h"

#include "driver/DriverLine.h"

#include <QDeadlineTimer>
#include <QJsonArray>

#include <algorithm>
#include <functional>
#include <optional>
#include <utility>

namespace {

using Milliseconds = DriverClient::Milliseconds;

QStringList TextsOf(const QJsonObject& object, const char* key) {
    QStringList texts;
    for (const QJsonValue value : object.value(QLatin1String(key)).toArray()) texts << value.toString();
    return texts;
}

QString Described(const QString& deed, const QJsonObject& arguments) {
    QString words = deed;
    for (const char* key : {"form", "control"}) {
        const QString name = TextOf(arguments, key);
        if (!name.isEmpty()) words += QLatin1Char(qstrcmp(key, "form") == 0 ? ' ' : '.') + name;
    }
    for (const char* key : {"text", "contains", "key", "value", "name", "file"}) {
        const QJsonValue value = arguments.value(QLatin1String(key));
        if (!value.isUndefined()) words += QStringLiteral(" \"%1\"").arg(value.toVariant().toString());
    }
    return words;
}

} // namespace

QString DrivenTable::Cell(qsizetype row, const QString& heading) const {
    const qsizetype column = Headings.indexOf(heading);
    if (column < 0) {
        throw DriverFailure(QStringLiteral("the table has no heading \"%1\"; it has: %2")
                                .arg(heading, Headings.join(QLatin1String(", ")))
                                .toStdString());
    }
    if (row < 0 || row >= Rows.size()) {
        throw DriverFailure(
            QStringLiteral("the table has no row %1; it has %2").arg(row).arg(Rows.size()).toStdString());
    }
    return Rows[row][column];
}

DriverClient::DriverClient(DrivenProgram program) : line_(std::make_unique<DriverLine>(std::move(program))) {}
DriverClient::~DriverClient() = default;

void DriverClient::SetPatience(Milliseconds patience) {
    line_->Patience = patience;
}

void DriverClient::Start() {
    line_->Start();
    for (const QJsonObject& expectation : std::exchange(line_->Early, {})) {
        Request(QStringLiteral("expect"), expectation);
    }
    // The first request that is none: boxes are judged from here on. A program that has no more to say
    // than the expected boxes may end at it.
    const QString forms = QStringLiteral("forms");
    line_->Ask({{QStringLiteral("do"), forms}}, forms, line_->Patience, true);
}

bool DriverClient::IsRunning() const {
    return line_->HasStarted() && !line_->HasEnded();
}
qint64 DriverClient::ProcessId() const {
    return line_->ProcessId();
}
QString DriverClient::Folder() const {
    return line_->Folder();
}

QJsonObject DriverClient::Request(const QString& deed, QJsonObject arguments, Milliseconds within) {
    constexpr int aDeedTakesLonger = 10;
    const QString words = Described(deed, arguments);
    arguments.insert(QStringLiteral("do"), deed);
    if (within.count() < 0) within = line_->Patience * aDeedTakesLonger;
    return *line_->Ask(std::move(arguments), words, within, false);
}

QJsonObject DriverClient::Wait(const QString& deed, QJsonObject arguments, Milliseconds within) {
    if (within.count() < 0) within = line_->Patience;
    arguments.insert(QStringLiteral("timeout"), static_cast<qint64>(within.count()));
    // The program tells the time; this side only notices that it does not answer at all.
    return Request(deed, std::move(arguments), within + line_->Patience);
}

QJsonObject DriverClient::To(const QString& form, const QString& control,
                             std::initializer_list<std::pair<const char*, QJsonValue>> more) const {
    QJsonObject arguments{{QStringLiteral("form"), form}, {QStringLiteral("control"), control}};
    for (const auto& [name, value] : more) arguments.insert(QLatin1String(name), value);
    return arguments;
}

// ---- boxes ----

void DriverClient::Register(const QJsonObject& expectation) {
    line_->Expected << Described(QStringLiteral("box"), expectation);
    if (!line_->HasStarted())
        line_->Early << expectation;
    else
        Request(QStringLiteral("expect"), expectation);
}

void DriverClient::Expect(const QString& text, const QString& button) {
    Register({{QStringLiteral("text"), text}, {QStringLiteral("answer"), button}});
}

void DriverClient::ExpectContaining(const QString& piece, const QString& button) {
    Register({{QStringLiteral("contains"), piece}, {QStringLiteral("answer"), button}});
}

void DriverClient::ExpectInput(const QString& text, const QString& input) {
    Register({{QStringLiteral("text"), text}, {QStringLiteral("input"), input}});
}

void DriverClient::ExpectInputContaining(const QString& piece, const QString& input) {
    Register({{QStringLiteral("contains"), piece}, {QStringLiteral("input"), input}});
}

void DriverClient::ExpectFile(const QString& title, const QString& path) {
    Register({{QStringLiteral("box"), QStringLiteral("FileDialog")},
              {QStringLiteral("text"), title},
              {QStringLiteral("input"), path}});
}

void DriverClient::ExpectInputCancelled(const QString& text) {
    Register({{QStringLiteral("box"), QStringLiteral("InputBox")},
              {QStringLiteral("text"), text},
              {QStringLiteral("answer"), QStringLiteral("Cancel")}});
}

QStringList DriverClient::Expectations() {
    return TextsOf(Request(QStringLiteral("expectations")), "expectations");
}

QStringList DriverClient::Failures() {
    QStringList failures = TextsOf(Request(QStringLiteral("failures")), "failures");
    line_->Failure.clear();
    return failures;
}

QList<DrivenBox> DriverClient::Boxes() const {
    return line_->Boxes;
}

void DriverClient::Done(Milliseconds within) {
    Wait(QStringLiteral("done"), {}, within);
}

// ---- deeds ----

void DriverClient::Click(const QString& form, const QString& control) {
    Request(QStringLiteral("click"), To(form, control));
}

void DriverClient::Choose(const QString& form, const QString& control, const QString& entry) {
    Request(QStringLiteral("choose"), To(form, control, {{"text", entry}}));
}

void DriverClient::ChooseTwice(const QString& form, const QString& control, const QString& entry) {
    Request(QStringLiteral("choose"), To(form, control, {{"text", entry}, {"twice", true}}));
}

void DriverClient::ChooseAlso(const QString& form, const QString& control, const QString& entry) {
    Request(QStringLiteral("choose"), To(form, control, {{"text", entry}, {"add", true}}));
}

void DriverClient::ChooseRow(const QString& form, const QString& control, int row, int column, bool twice) {
    Request(QStringLiteral("choose"),
            To(form, control, {{"row", row}, {"column", column}, {"twice", twice}}));
}

void DriverClient::ClickHeading(const QString& form, const QString& control, const QString& heading) {
    Request(QStringLiteral("clickHeading"), To(form, control, {{"text", heading}}));
}

void DriverClient::Set(const QString& form, const QString& control, const QString& text) {
    Request(QStringLiteral("set"), To(form, control, {{"value", text}}));
}

void DriverClient::Set(const QString& form, const QString& control, bool tick) {
    Request(QStringLiteral("set"), To(form, control, {{"value", tick}}));
}

void DriverClient::Focus(const QString& form, const QString& control) {
    Request(QStringLiteral("focus"), To(form, control));
}

void DriverClient::Key(const QString& key) {
    Request(QStringLiteral("key"), {{QStringLiteral("key"), key}});
}
void DriverClient::Type(const QString& text) {
    Request(QStringLiteral("type"), {{QStringLiteral("text"), text}});
}

void DriverClient::Close(const QString& form) {
    Request(QStringLiteral("close"), {{QStringLiteral("form"), form}});
}

// ---- looks ----

QList<DrivenForm> DriverClient::Forms() {
    QList<DrivenForm> forms;
    for (const QJsonValue value : Request(QStringLiteral("forms")).value(QLatin1String("forms")).toArray()) {
        const QJsonObject form = value.toObject();
        forms << DrivenForm{
            TextOf(form, "name"), TextOf(form, "title"), form.value(QLatin1String("modal")).toBool(),
            form.value(QLatin1String("active")).toBool(), form.value(QLatin1String("blocked")).toBool()};
    }
    return forms;
}

bool DriverClient::IsShown(const QString& form) {
    const QList<DrivenForm> forms = Forms();
    return std::any_of(forms.begin(), forms.end(),
                       [&](const DrivenForm& shown) { return shown.Name == form; });
}

QString DriverClient::Text(const QString& form, const QString& control) {
    return TextOf(Request(QStringLiteral("text"), To(form, control)), "text");
}

QString DriverClient::Title(const QString& form) {
    return Text(form, {});
}

QString DriverClient::BoxText(const QString& form) {
    return TextOf(Request(QStringLiteral("boxText"), {{QStringLiteral("form"), form}}), "text");
}

QJsonValue DriverClient::Property(const QString& form, const QString& control, const QString& name) {
    return Request(QStringLiteral("property"), To(form, control, {{"name", name}}))
        .value(QLatin1String("value"));
}

bool DriverClient::IsEnabled(const QString& form, const QString& control) {
    return Property(form, control, QStringLiteral("enabled")).toBool();
}

bool DriverClient::IsVisible(const QString& form, const QString& control) {
    return Property(form, control, QStringLiteral("visible")).toBool();
}

bool DriverClient::IsChecked(const QString& form, const QString& control) {
    return Property(form, control, QStringLiteral("checked")).toBool();
}

bool DriverClient::HasFocus(const QString& form, const QString& control) {
    return Property(form, control, QStringLiteral("focus")).toBool();
}

QStringList DriverClient::Items(const QString& form, const QString& control) {
    return TextsOf(Request(QStringLiteral("items"), To(form, control)), "items");
}

QStringList DriverClient::ChosenItems(const QString& form, const QString& control) {
    const QJsonObject answer = Request(QStringLiteral("items"), To(form, control));
    const QStringList items = TextsOf(answer, "items");
    QStringList chosen;
    for (const QJsonValue row : answer.value(QLatin1String("chosen")).toArray())
        chosen << items.value(row.toInt());
    return chosen;
}

QList<DrivenControl> DriverClient::Controls(const QString& form) {
    const QJsonObject answer = Request(QStringLiteral("controls"), {{QStringLiteral("form"), form}});
    QList<DrivenControl> controls;
    for (const QJsonValue control : answer.value(QLatin1String("controls")).toArray()) {
        controls << DrivenControl{
            control[QLatin1String("name")].toString(), control[QLatin1String("class")].toString(),
            control[QLatin1String("enabled")].toBool(), control[QLatin1String("visible")].toBool()};
    }
    return controls;
}

DrivenTable DriverClient::Rows(const QString& form, const QString& control) {
    const QJsonObject answer = Request(QStringLiteral("rows"), To(form, control));
    DrivenTable table{TextsOf(answer, "headings"), {}, {}};
    for (const QJsonValue row : answer.value(QLatin1String("rows")).toArray()) {
        QStringList cells;
        for (const QJsonValue cell : row.toArray()) cells << cell.toString();
        table.Rows << cells;
    }
    for (const QJsonValue ground : answer.value(QLatin1String("grounds")).toArray()) {
        table.Grounds.insert({ground[QLatin1String("row")].toInt(), ground[QLatin1String("column")].toInt()},
                             ground[QLatin1String("color")].toString());
    }
    return table;
}

void DriverClient::Grab(const QString& form, const QString& file) {
    Request(QStringLiteral("grab"), {{QStringLiteral("form"), form}, {QStringLiteral("file"), file}});
}

// ---- waits ----

void DriverClient::WaitForm(const QString& form, Milliseconds within) {
    Wait(QStringLiteral("waitForm"), {{QStringLiteral("form"), form}}, within);
}

void DriverClient::WaitGone(const QString& form, Milliseconds within) {
    Wait(QStringLiteral("waitGone"), {{QStringLiteral("form"), form}}, within);
}

void DriverClient::WaitEnabled(const QString& form, const QString& control, Milliseconds within) {
    Wait(QStringLiteral("waitEnabled"), To(form, control), within);
}

void DriverClient::WaitDisabled(const QString& form, const QString& control, Milliseconds within) {
    Wait(QStringLiteral("waitEnabled"), To(form, control, {{"enabled", false}}), within);
}

QString DriverClient::WaitText(const QString& form, const QString& control, const QString& text,
                               Milliseconds within) {
    return TextOf(Wait(QStringLiteral("waitText"), To(form, control, {{"text", text}}), within), "text");
}

QString DriverClient::WaitTextContaining(const QString& form, const QString& control, const QString& piece,
                                         Milliseconds within) {
    return TextOf(Wait(QStringLiteral("waitText"), To(form, control, {{"contains", piece}}), within), "text");
}

// ---- the end ----

int DriverClient::Quit(Milliseconds within) {
    if (within.count() < 0) within = line_->Patience;
    const QDeadlineTimer until(within);
    const QString quit = QStringLiteral("quit");
    line_->Ask({{QStringLiteral("do"), quit}}, quit, within, true);
    return line_->WaitForEnd(Milliseconds(until.remainingTime()));
}

int DriverClient::WaitForEnd(Milliseconds within) {
    return line_->WaitForEnd(within.count() < 0 ? line_->Patience : within);
}

void DriverClient::Kill() {
    line_->Kill();
}
QString DriverClient::StandardOutput() const {
    return QString::fromUtf8(line_->Output);
}
QString DriverClient::StandardError() const {
    return QString::fromUtf8(line_->Error);
}
