#pragma once

#include "core/Text.h"
#include "exchange/ImportPreview.h"

#include <QAbstractTableModel>

#include <string>
#include <vector>

/// What an operator sees of a mapping beside its lists: a row for each column of the data file, with
/// the fields that take it and what the file holds there.
class PreviewModel final : public QAbstractTableModel {
public:
    explicit PreviewModel(QObject* parent) : QAbstractTableModel(parent) {}

    void SetColumns(PreviewColumns columns);

    /// `selected`: rows as ImportJob::SelectedFields; `available`: the names that they may hold.
    void SetMapping(const std::vector<std::string>& selected, const std::vector<std::string>& available);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    /// What becomes of a column of the file.
    enum class Fate { Taken, Ignored, NotTaken, Wrong };
    struct Target {
        Text Words;
        Fate Becomes = Fate::NotTaken;
    };

    const PreviewLine& Line(int section) const;
    bool IsAbove(int section) const;
    void FindTargets();

    PreviewColumns columns_;
    std::vector<std::string> selected_;
    std::vector<std::string> available_;
    std::vector<Target> targets_; ///< one a row of the grid
};
