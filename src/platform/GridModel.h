#pragma once

#include <QAbstractTableModel>
#include <QStringList>

#include <vector>

/// A small grid of texts: headings and rows, replaced at once. A column is left or right aligned.
class GridModel final : public QAbstractTableModel {
public:
    explicit GridModel(QObject* parent) : QAbstractTableModel(parent) {}

    void SetHeadings(const QStringList& headings, const std::vector<Qt::Alignment>& alignments);
    void SetRows(std::vector<QStringList> rows);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    QStringList headings_;
    std::vector<Qt::Alignment> alignments_;
    std::vector<QStringList> rows_;
};
