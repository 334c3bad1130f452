#include "support/EngineTest.h"

#include "core/Paths.h"

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

namespace fs = std::filesystem;

EngineTest::EngineTest() {
    Global = Globals{};
    Global.TheDisk = &disk_;
    std::random_device random;
    fs::path folder;
    do {
        folder = fs::temp_directory_path() / ("tramble-" + std::to_string(random()));
    } while (!fs::create_directory(folder));
    folder_ = folder.string() + "/";
}

EngineTest::~EngineTest() {
    Global = Globals{};
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
}

void EngineTest::GivenAppDirectory() {
    Global.AppPath = folder_ + "app/";
    const auto make = [](std::string& path, const std::string& where) {
        path = where;
        MakePath(path);
    };
    MakePath(Global.AppPath);
    make(Global.InstallPath, Global.AppPath + "Install/");
    make(Global.GraphicsPath, Global.InstallPath + "Graphics/");
    make(Global.DBFPath, Global.AppPath + "DBFFiles/");
    make(Global.ImagesPath, Global.DBFPath + "Images/");
    make(Global.HHTotalsPath, Global.DBFPath + "HHTotals/");
    make(Global.DBFEmptyPath, Global.AppPath + "DBFEmpty/");
    make(Global.DataInPath, Global.AppPath + "DataIn/");
    make(Global.DataOutPath, Global.AppPath + "DataOut/");
    make(Global.BackupPath, Global.AppPath + "Backup/");
    make(Global.TemplatesPath, Global.AppPath + "Templates/");
    make(Global.ImportTemplates, Global.TemplatesPath + "Import/");
    make(Global.ExportTemplates, Global.TemplatesPath + "Export/");
    make(Global.QuickButtonTemplates, Global.TemplatesPath + "QuickButtons/");
    Global.IniFile = Global.AppPath + "ZUKTramble.ini";
}

std::string EngineTest::GivenFile(const std::string& name, std::string_view content) {
    const fs::path path = fs::path(folder_) / name;
    fs::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary);
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
    return path.string();
}

std::string EngineTest::Bytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file.good()) << path;
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

std::vector<std::string> EngineTest::Lines(const std::string& path) {
    std::vector<std::string> lines;
    std::istringstream content(Bytes(path));
    for (std::string line; std::getline(content, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        lines.push_back(line);
    }
    return lines;
}

bool EngineTest::Exists(const std::string& path) {
    return fs::exists(path);
}
