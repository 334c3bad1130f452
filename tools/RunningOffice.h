#pragma once

#include "OfficeForDay.h"
#include "driver/DriverClient.h"

#include <QList>
#include <QMap>
#include <QPair>
#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

#include <functional>
#include <map>
#include <memory>
#include <stdexcept>

class DayFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// DayFailure with these words when a condition does not hold.
void Require(bool holds, const QString& what);

/// A file's text; empty when it cannot be read.
QString TextOf(const QString& path);

/// What stands on one side under an order's code, with the sum of its lines in cents.
struct Order {
    int Headers = 0, Lines = 0;
    qint64 Cents = 0;

    friend bool operator==(const Order&, const Order&) = default;
};
using Orders = std::map<QString, Order>;

/// As "3 orders, 17 lines, 120.50".
QString TotalsOf(const Orders& orders);

/// An office over the real programs, with handhelds around it: what the days of LoopOfDay and BusyDay
/// are made of. Everything lies in the folder `office` and in `<office>-around`. What does not come about is
/// a DayFailure, or one of those of its parts.
class RunningOffice {
public:
    RunningOffice(const RunningOffice&) = delete;
    RunningOffice& operator=(const RunningOffice&) = delete;

protected:
    /// Of a user of the HotSync Manager, with a handheld and a row in the Links table.
    struct Salesperson {
        QString Name;
        int Id = 0;
        QString Machine;   ///< id of the handheld
        QString LastOrder; ///< digits
    };

    /// `say` gets a line for each step; the templates of each kind are called `Day`. `samples` makes
    /// customers.csv and items.txt in a folder. The handhelds are empty; `options` are those of the command
    /// that makes one.
    RunningOffice(const QString& build, const QString& office, const QList<Salesperson>& people,
                  const QStringList& options, std::function<void(const QString&)> say,
                  const std::function<void(const QString& folder)>& samples);
    ~RunningOffice();
    void StartProgram(const QString& box = {});
    /// The manager as this process's own; the program finds it there.
    void StartManager();
    void StopManager() const;

    void CheckOrdersAtExport() const;
    void Template(const QString& name, const QByteArray& content) const;
    void Unattended(const QString& name, bool download, bool upload, bool clear) const;

    /// Runs an activity of `DemoImport`'s kind, whose report has no errors. `further` are the boxes and their
    /// answers.
    void Activity(const QString& button, const QString& form, const QString& activity,
                  const QList<QPair<QString, QString>>& further);
    /// Starts unattended mode; `checks` when a Quality Check comes before it.
    void Arm(const QString& name, bool checks);
    void Disarm();
    /// From the handheld's button to the end that the program has worked off.
    void HotSync(const QString& user);

    QString HandheldFolder(const QString& user) const;
    /// A command of a handheld; what it said is in `said_`.
    void Hand(const QString& user, const QStringList& arguments);
    bool Run(const QString& program, const QStringList& arguments);

    qsizetype LogCount(const char* words) const;
    /// Where the manager listens, out of its log; empty until it does.
    QString Address() const;
    bool Until(const std::function<bool()>& condition) const;

    Orders OnPC() const;
    Orders OnHandheld(const QString& user);
    Orders InExport() const;

    static const QString Main;
    int Patience = 60000; ///< milliseconds
    QStringList wrap_;    ///< what stands before the command line of a handheld

    QString build_, around_;
    std::function<void(const QString&)> say_;
    OfficeForDay office_;
    QProcess manager_; ///< running only where StartManager was called
    std::unique_ptr<DriverClient> program_;
    QString said_;

private:
    QString SamplesFor(const QList<Salesperson>& people,
                       const std::function<void(const QString& folder)>& samples) const;
    QMap<QString, QString> Around() const;
    QProcessEnvironment Environment() const;
};
