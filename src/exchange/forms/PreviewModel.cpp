#include "exchange/forms/PreviewModel.h"

#include "core/Messages.h"
#include "core/TextCompare.h"
#include "exchange/ImportMapping.h"
#include "platform/Convert.h"
#include "platform/Look.h"

#include <QApplication>
#include <QFont>
#include <QPalette>

#include <algorithm>

namespace {

/// Columns of the grid before those of the file's lines.
constexpr int ColumnNumber = 0, GoesTo = 1, FirstLine = 2;

} // namespace

void PreviewModel::SetColumns(PreviewColumns columns) {
    beginResetModel();
    columns_ = std::move(columns);
    FindTargets();
    endResetModel();
}

void PreviewModel::SetMapping(const std::vector<std::string>& selected,
                              const std::vector<std::string>& available) {
    beginResetModel();
    selected_ = selected;
    available_ = available;
    FindTargets();
    endResetModel();
}

void PreviewModel::FindTargets() {
    targets_.assign(std::max(columns_.Count, selected_.size()), {msg::NotImported, Fate::NotTaken});
    for (std::size_t k = 0; k < selected_.size(); ++k) {
        Target& target = targets_[k];
        target = {Text::Value(selected_[k]), Fate::Taken};
        if (SameText(selected_[k], IgnoreRow)) target = {msg::NotImported, Fate::Ignored};
        for (const std::string& field : ImportMapping::FieldsOfRow(selected_[k])) {
            const auto known = [&](const std::string& name) { return SameText(name, field); };
            if (std::any_of(available_.begin(), available_.end(), known)) continue;
            target = {Words(Text::Value(field), msg::NotAField), Fate::Wrong};
        }
        if (k >= columns_.Count)
            target = {Text::Value(selected_[k]) + Text::Value(std::string_view(": ")) + msg::NoSuchColumn,
                      Fate::Wrong};
    }
}

int PreviewModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(targets_.size());
}

int PreviewModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : FirstLine + static_cast<int>(columns_.Above.size() + columns_.Data.size());
}

bool PreviewModel::IsAbove(int section) const {
    return static_cast<std::size_t>(section - FirstLine) < columns_.Above.size();
}

const PreviewLine& PreviewModel::Line(int section) const {
    const auto place = static_cast<std::size_t>(section - FirstLine);
    return IsAbove(section) ? columns_.Above[place] : columns_.Data.at(place - columns_.Above.size());
}

QVariant PreviewModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    const auto row = static_cast<std::size_t>(index.row());
    const Fate fate = targets_[row].Becomes;
    const QPalette palette = QApplication::palette();
    if (role == Qt::DisplayRole || role == Qt::ToolTipRole) {
        if (index.column() == ColumnNumber) return index.row() + 1;
        if (index.column() == GoesTo) {
            const QString target = ToQt(targets_[row].Words);
            return role == Qt::ToolTipRole ? PlainTip(target) : target;
        }
        const std::vector<std::string>& cells = Line(index.column()).Cells;
        const QString cell = row < cells.size() ? ToQt(std::string_view(cells[row])) : QString();
        return role == Qt::ToolTipRole ? PlainTip(cell) : cell;
    }
    if (role == Qt::ForegroundRole) {
        if (fate == Fate::Wrong && index.column() == GoesTo) return WarningTone();
        if (fate == Fate::Ignored || (fate == Fate::NotTaken && index.column() == GoesTo))
            return palette.color(QPalette::PlaceholderText);
    }
    if (role == Qt::FontRole) {
        QFont font;
        font.setBold(index.column() == GoesTo && fate == Fate::Taken);
        font.setItalic(index.column() >= FirstLine && IsAbove(index.column()));
        return font;
    }
    if (role == Qt::TextAlignmentRole && index.column() == ColumnNumber)
        return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
    return {};
}

QVariant PreviewModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0) return {};
    if (role == Qt::TextAlignmentRole) return QVariant::fromValue(Qt::AlignLeft | Qt::AlignVCenter);
    if (role != Qt::DisplayRole) return {};
    if (section == ColumnNumber) return ToQt(Text(msg::PreviewColumn));
    if (section == GoesTo) return ToQt(Text(msg::PreviewField));
    if (section >= columnCount()) return {};
    return ToQt(Words(msg::PreviewLine, Text::Value(Line(section).Number)));
}
