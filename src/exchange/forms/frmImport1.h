#pragma once

#include "exchange/ImportMapping.h"
#include "exchange/ImportPreview.h"
#include "exchange/ImportTemplate.h"
#include "exchange/forms/PreviewModel.h"
#include "exchange/forms/SavedMappings.h"
#include "platform/Form.h"
#include "ui_frmImport1.h"

#include <cstdint>
#include <optional>
#include <string>

struct ImportJob;
struct ImportResult;

/// Lays out which column of a data file feeds which field of a table, keeps that as a template, and
/// imports by it.
///
/// Opened by `frmConvert`, which knows the file and the table; or, with `Global.TemplateEditMode`, to
/// keep templates: all of them, or those of `Global.TemplateEditKind` alone.
class frmImport1 final : public Form, private Ui::frmImport1 {
    Q_OBJECT

public:
    frmImport1();

    /// Writes the template of a file name again, with its mapping and its settings as they stand and the
    /// name of the data file that `frmConvert` has chosen, whatever columns that has. False when it
    /// could not; the operator has been told.
    bool SaveAnew(const std::string& templateFile);

private slots:
    void cboSettings_Click();
    void cboSettings_Change();
    void optCSVQ_Click();
    void optCSV_Click();
    void optTAB_Click();
    void UpDown1_Change();
    void lstAvailable_Click();
    void lstAvailable_DblClick();
    void lstSelected_Click();
    void lstSelected_DblClick();
    void lstLiteral_Click();
    void lstLiteral_DblClick();
    void FGPreview_Click();
    void cmdAdd1_Click();
    void cmdAnd_Click();
    void cmdLiteral_Click();
    void cmdRemove1_Click();
    void cmdRemoveAll_Click();
    void cmdOK_Click();
    void cmdCancel_Click();

protected:
    void Form_Load() override;

private:
    enum class Mode { Import, EditTemplate, EditKind };

    void LoadForImport(const std::string& importFile);
    void LoadForEditing();
    void ListAvailable(TemplateKind kind);
    bool LoadPreview();
    bool RecogniseFormat();

    bool CanSave();
    void Write(const std::string& path) const;
    void RememberHead() const;

    ::Delimiter Delimiter() const;
    void SetDelimiter(::Delimiter delimiter);
    std::optional<std::size_t> SelectedRow() const;
    void ShowMapping(std::optional<std::size_t> row);
    void ShowColumns();
    void MarkColumn();
    void ShowHint();
    void SetAddText();
    void CheckOK();
    void CheckSaveSettings();

    bool ColumnsStand() const;
    ImportJob Job() const;
    void Import();
    void TellResult(const ImportJob& job, const ImportResult& result);

    SavedMappings* templates_;
    Mode mode_ = Mode::Import;
    std::string importFile_; ///< full path of the data file
    std::string tableFile_;  ///< full path of the table
    std::optional<::TemplateKind> kind_;
    std::vector<std::string> available_; ///< "Ignore" and the table's fields
    ImportMapping mapping_;
    ImportPreview preview_;
    PreviewModel* columns_;
    bool endsBeforeStart_ = false;
    bool startsWithHeadings_ = false;
};
