#include "support/Rubbish.h"

#include <algorithm>
#include <array>
#include <random>

namespace {

constexpr int Files = 300;
constexpr std::size_t LongestNoise = 3000;

class Spoiler {
public:
    std::string Noise() {
        std::string bytes(Below(LongestNoise), '\0');
        for (char& c : bytes) c = Byte();
        return bytes;
    }

    void Spoil(std::string& file) {
        const std::size_t at = Below(file.size() + 1);
        const std::size_t size = Below(std::min<std::size_t>(file.size() - at, 80) + 1);
        switch (Below(6)) {
        case 0:
            for (std::size_t k = at; k < at + size; ++k) file[k] = Byte();
            break;
        case 1:
            file.erase(at, Below(4) == 0 ? std::string::npos : size);
            break;
        case 2:
            file.insert(Below(file.size() + 1), file.substr(at, size));
            break;
        case 3:
            file.insert(at, Below(200), Byte());
            break;
        case 4:
            file.insert(at, Pieces[Below(Pieces.size())]);
            break;
        default:
            if (at < file.size()) file[at] = static_cast<char>(file[at] ^ (1 << Below(8)));
        }
    }

    std::size_t Below(std::size_t end) { return random_() % end; }

private:
    static constexpr std::array<std::string_view, 12> Pieces{
        "\r\n", "\n",  "\r",     "\x1A",        std::string_view("\0", 1), "=", "\"", ",",
        "; ",   " = ", " / [0]", "\xEF\xBB\xBF"};

    char Byte() { return static_cast<char>(Below(256)); }

    std::mt19937 random_{20261115};
};

} // namespace

std::vector<std::string> Rubbish(std::string_view good) {
    Spoiler spoiler;
    std::vector<std::string> files;
    for (int k = 0; k < Files; ++k) {
        std::string file = k % 3 == 0 ? spoiler.Noise() : std::string(good);
        if (k % 3 != 0) {
            for (std::size_t times = spoiler.Below(6) + 1; times > 0; --times) spoiler.Spoil(file);
        }
        files.push_back(std::move(file));
    }
    return files;
}
