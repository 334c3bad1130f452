#include "views/Signatures.h"

#include "core/Globals.h"
#include "core/Paths.h"
#include "core/TextCompare.h"
#include "store/TableRewrite.h"
#include "store/TableScan.h"

#include <unordered_set>

namespace {

constexpr const char* Bitmap = ".bmp";

} // namespace

std::string SignTablePath() {
    return Global.DBFPath + "SIGN.DBF";
}

void MakeSignTable() {
    std::unordered_set<std::string> signedOrders;
    for (const std::string& name : NamesWithExtension(Global.ImagesPath, Bitmap)) {
        if (IsPlainFileName(name)) signedOrders.insert(FoldCase(PathToName(name)));
    }
    TableScan headers(Global.DBFPath + "ZUKORHDR.DBF");
    TableRewrite copy(SignTablePath(), headers.Layout());
    const int code = headers.Layout().Find(FieldKey("H_ORDCODE"));
    while (headers.Next()) {
        if (!headers.Deleted() && signedOrders.contains(FoldCase(headers.Trimmed(code))))
            copy.AppendRaw(TableLayout::Live, headers.Record());
    }
    headers.Close();
    copy.Commit(false);
}

void RemoveSignTable() noexcept {
    RemoveQuietly(SignTablePath());
}

std::string SignatureOf(std::string_view orderCode) {
    const std::string name = NameToPath(orderCode);
    if (!IsPlainFileName(name)) return {};
    std::string path = Global.ImagesPath + name + Bitmap;
    return FileExists(path) ? ResolvePath(path) : std::string();
}
