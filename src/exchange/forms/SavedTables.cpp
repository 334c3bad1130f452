#include "exchange/forms/SavedTables.h"

#include "core/Catalogue.h"
#include "core/Globals.h"
#include "core/Messages.h"
#include "core/Operator.h"
#include "core/Paths.h"
#include "platform/Convert.h"
#include "tools/forms/frmOptions.h"

#include <QComboBox>
#include <QPushButton>

void FillSavedTables(QComboBox& box, const std::string& folder, std::string_view extension) {
    const QString chosen = box.currentText();
    box.clear();
    for (const std::string& name : NamesWithExtension(folder, extension)) box.addItem(PathToQt(name));
    box.setCurrentIndex(chosen.isEmpty() ? -1 : box.findText(chosen));
    box.setPlaceholderText(box.count() == 0 ? ToQt(Text(msg::NoTemplatesYet)) : QString());
}

bool AgreedToPerform(const std::string& name) {
    return AskYesNo(Words(msg::Perform, Text::Path(std::string_view(name))) + msg::IsThatCorrect);
}

void SetUpSavedTables(std::string_view extension) {
    Global.TemplateEditMode = true;
    auto& options = The<frmOptions>();
    options.TurnTo(extension);
    options.Show(ShowMode::Modal);
    Global.TemplateEditMode = false;
}

void ShowDone(QPushButton& cmdCancel) {
    cmdCancel.setText(QString::fromStdString(CatalogueCaption(msg::Done)));
    cmdCancel.setFocus();
}
