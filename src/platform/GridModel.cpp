#include "platform/GridModel.h"

void GridModel::SetHeadings(const QStringList& headings, const std::vector<Qt::Alignment>& alignments) {
    beginResetModel();
    headings_ = headings;
    alignments_ = alignments;
    endResetModel();
}

void GridModel::SetRows(std::vector<QStringList> rows) {
    beginResetModel();
    rows_ = std::move(rows);
    endResetModel();
}

int GridModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int GridModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(headings_.size());
}

QVariant GridModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    const auto column = static_cast<std::size_t>(index.column());
    // The tip is for a cell that is too narrow for its text.
    if (role == Qt::DisplayRole || role == Qt::ToolTipRole)
        return rows_.at(static_cast<std::size_t>(index.row())).value(index.column());
    if (role == Qt::TextAlignmentRole && column < alignments_.size()) {
        return QVariant::fromValue(alignments_[column] | Qt::AlignVCenter);
    }
    return {};
}

QVariant GridModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0) return {};
    if (role == Qt::DisplayRole) return headings_.value(section);
    if (role == Qt::TextAlignmentRole && static_cast<std::size_t>(section) < alignments_.size()) {
        return QVariant::fromValue(alignments_[static_cast<std::size_t>(section)] | Qt::AlignVCenter);
    }
    return {};
}
