#pragma once

#include <QAbstractListModel>
#include <QComboBox>

#include <cstdint>
#include <string>
#include <vector>

/// The entries of a LookupBox: texts in code page 1252 that somebody else holds.
class LookupEntries final : public QAbstractListModel {
    Q_OBJECT

public:
    using QAbstractListModel::QAbstractListModel;

    /// The texts stay the caller's, who says here when there are others. One reset, however many.
    void Show(const std::vector<std::string>& texts);
    /// One of them has changed.
    void Refresh(int row);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    const std::vector<std::string>* texts_ = nullptr;
    int count_ = 0;
};

/// A droplist of very many entries in which typing finds: those that contain what is typed drop down, and
/// Enter takes the one that is marked, or the first. What was typed and not taken is gone when the focus
/// leaves. The event Click comes when an entry has been taken, whatever was there before.
class LookupBox final : public QComboBox {
    Q_OBJECT

public:
    explicit LookupBox(QWidget* parent = nullptr);

    void Show(const std::vector<std::string>& texts) { entries_->Show(texts); }
    void Refresh(int row) { entries_->Refresh(row); }

    /// Shows an entry, -1 for none, in place of what may have been typed.
    void Stand(int row);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    bool IsTyped() const;
    void TakeFirst();

    LookupEntries* entries_;
};
