#pragma once

#include "views/GridData.h"

#include <QAbstractTableModel>

#include <memory>

/// A grid's content as Qt's views read it: what is on the screen is asked for, and nothing else.
///
/// Heading rows, where the content has titles over its columns, are the first rows of the model.
class GridDataModel final : public QAbstractTableModel {
    Q_OBJECT

public:
    explicit GridDataModel(QObject* parent) : QAbstractTableModel(parent) {}

    /// A null pointer leaves a grid without columns.
    void SetContent(std::unique_ptr<GridData> content);
    GridData* Content() const { return content_.get(); }

    /// 0, or 2: the titles over the columns and the columns' own.
    int HeadingRows() const { return content_ && !content_->Groups().empty() ? 2 : 0; }

    /// Takes the content as it stands in the file now. When it cannot be read there are no rows.
    void Reload();

    /// Why the content cannot be read; empty when it can.
    const std::string& Fault() const { return fault_; }

    /// Puts the rows in order. A content that cannot be read meanwhile is loaded anew.
    void SortBy(int column, bool descending);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

signals:
    /// What is shown is no longer what stands in the file: from the event loop, once until Reload.
    void Outdated();

private:
    QVariant HeadingCell(int row, int column, int role) const;
    QString Title(int column) const;
    void Watch() const;

    std::unique_ptr<GridData> content_;
    std::string fault_;
    int sortColumn_ = -1;
    bool descending_ = false;
    mutable bool announced_ = false;
};
