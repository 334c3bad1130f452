#include "platform/GridDataModel.h"

#include "core/Failure.h"
#include "platform/Convert.h"

#include <QColor>
#include <QGuiApplication>
#include <QPalette>

#include <optional>

namespace {

/// The ground on which a faulty cell stands.
std::optional<QColor> MarkColor(CellMark mark) {
    switch (mark) {
    case CellMark::Fatal:
        return QColor(255, 0, 0);
    case CellMark::Warn:
        return QColor(255, 255, 0);
    case CellMark::Past:
    case CellMark::None:
        break;
    }
    return std::nullopt;
}

} // namespace

void GridDataModel::SetContent(std::unique_ptr<GridData> content) {
    beginResetModel();
    content_ = std::move(content);
    fault_.clear();
    sortColumn_ = -1;
    announced_ = false;
    endResetModel();
}

void GridDataModel::Reload() {
    if (!content_) return;
    beginResetModel();
    fault_.clear();
    announced_ = false;
    try {
        content_->Reload();
        if (sortColumn_ >= columnCount()) sortColumn_ = -1;
        if (sortColumn_ >= 0) content_->Sort(sortColumn_, descending_);
    } catch (const RunTimeFailure& failure) {
        fault_ = failure.what();
        // Nobody is to be told again and again; the next look at the table is somebody's wish.
        announced_ = true;
    }
    endResetModel();
}

void GridDataModel::SortBy(int column, bool descending) {
    sortColumn_ = column;
    descending_ = descending;
    emit layoutAboutToBeChanged();
    try {
        content_->Sort(column, descending);
        emit layoutChanged();
    } catch (const RunTimeFailure&) {
        emit layoutChanged();
        Reload();
    }
    Watch();
}

int GridDataModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() || !content_ ? 0 : HeadingRows() + content_->RowCount();
}

int GridDataModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() || !content_ ? 0 : content_->ColumnCount();
}

QString GridDataModel::Title(int column) const {
    return ToQt(content_->Heading(column).Title);
}

void GridDataModel::Watch() const {
    if (announced_ || !content_->HasChanged()) return;
    announced_ = true;
    // A view that paints cannot be told that its rows have gone: later.
    auto* self = const_cast<GridDataModel*>(this);
    QMetaObject::invokeMethod(
        self, [self] { emit self->Outdated(); }, Qt::QueuedConnection);
}

QVariant GridDataModel::HeadingCell(int row, int column, int role) const {
    switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole:
        if (row == 1) {
            const QString mark = column != sortColumn_ ? QString()
                                 : descending_         ? QStringLiteral(" \u25BC")
                                                       : QStringLiteral(" \u25B2");
            return Title(column) + mark;
        }
        for (const GridGroup& group : content_->Groups()) {
            if (group.First == column) return ToQt(group.Title);
        }
        return {};
    case Qt::BackgroundRole:
        return QGuiApplication::palette().brush(QPalette::Button);
    case Qt::ForegroundRole:
        return QGuiApplication::palette().brush(QPalette::ButtonText);
    case Qt::TextAlignmentRole:
        return row == 0 ? QVariant::fromValue(Qt::Alignment(Qt::AlignCenter))
                        : headerData(column, Qt::Horizontal, role);
    default:
        return {};
    }
}

QVariant GridDataModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    const int column = index.column();
    const int row = index.row() - HeadingRows();
    if (row < 0) return HeadingCell(index.row(), column, role);
    switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole: { // the tip is for a cell that is too narrow for its text
        const QString text = ToQt(content_->Cell(row, column));
        Watch();
        return role == Qt::ToolTipRole ? PlainTip(text) : text;
    }
    case Qt::TextAlignmentRole:
        return headerData(column, Qt::Horizontal, role);
    case Qt::BackgroundRole:
        if (const auto color = MarkColor(content_->MarkOf(row, column))) return *color;
        return {};
    case Qt::ForegroundRole:
        switch (content_->MarkOf(row, column)) {
        case CellMark::Fatal:
        case CellMark::Warn:
            return QColor(Qt::black); // on red and on yellow, in either look
        case CellMark::Past:
            return QGuiApplication::palette().brush(QPalette::PlaceholderText);
        case CellMark::None:
            break;
        }
        return {};
    default:
        return {};
    }
}

QVariant GridDataModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= columnCount()) return {};
    if (role == Qt::DisplayRole) return Title(section);
    if (role == Qt::ToolTipRole) return PlainTip(Title(section));
    if (role == Qt::TextAlignmentRole) {
        const bool isNumber = content_->Heading(section).Kind == SortKind::Number;
        return QVariant::fromValue((isNumber ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    }
    return {};
}
