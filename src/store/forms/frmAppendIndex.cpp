#include "store/forms/frmAppendIndex.h"

frmAppendIndex::frmAppendIndex() : AppendForm({{&UploadRun::BarcodeIndex, MergedBarcodeIndex}}) {
    setupUi(this);
    Bind();
}
