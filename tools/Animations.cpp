#include "Animations.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <map>
#include <utility>
#include <vector>

namespace {

constexpr int Oversize = 3;
constexpr int Width = 150, Height = 48; // of the screen

// ---- pictures ----

enum Tone : std::uint8_t { Clear, Grey, Light, Blue, Green, Faint };

/// Red, green and blue of each tone, in the order above; a GIF's table has a power of two of them.
constexpr std::array<std::uint32_t, 8> Tones = {0x000000, 0x7d8794, 0xe8edf2, 0x2f7fd1,
                                                0x3aa35b, 0xa9b2bc, 0x000000, 0x000000};
constexpr int ToneBits = 3;

/// A frame. Places and lengths are in pixels of the screen.
class Frame {
public:
    void Box(double x, double y, double width, double height, double radius, Tone tone) {
        Fill(tone, [=](double px, double py) {
            const double dx = std::max({x + radius - px, px - (x + width - radius), 0.0});
            const double dy = std::max({y + radius - py, py - (y + height - radius), 0.0});
            return dx * dx + dy * dy <= radius * radius;
        });
    }

    void Disc(double x, double y, double radius, Tone tone) {
        Fill(tone, [=](double px, double py) { return std::hypot(px - x, py - y) <= radius; });
    }

    /// The part of a ring that opens to the left.
    void Wave(double x, double y, double radius, Tone tone) {
        Fill(tone, [=](double px, double py) {
            const double ring = std::abs(std::hypot(px - x, py - y) - radius);
            return ring <= 1.2 && px < x && std::abs(py - y) < (x - px) * 0.55;
        });
    }

    const std::vector<std::uint8_t>& Pixels() const { return pixels_; }

private:
    template <class Inside>
    void Fill(Tone tone, const Inside& inside) {
        auto pixel = pixels_.begin();
        for (int row = 0; row < Height * Oversize; ++row) {
            for (int column = 0; column < Width * Oversize; ++column, ++pixel) {
                if (inside((column + 0.5) / Oversize, (row + 0.5) / Oversize)) *pixel = tone;
            }
        }
    }

    std::vector<std::uint8_t> pixels_ =
        std::vector<std::uint8_t>(std::size_t{Width} * Oversize * Height * Oversize, Clear);
};

constexpr double ButtonX = 20, ButtonY = 39;

void DrawHandheld(Frame& frame, Tone body, Tone screen) {
    frame.Box(8, 3, 24, 42, 4, body);
    frame.Box(11.5, 7, 17, 26, 1.5, screen);
    frame.Disc(ButtonX, ButtonY, 2.4, screen);
}

void DrawComputer(Frame& frame) {
    frame.Box(102, 5, 42, 30, 3, Grey);
    frame.Box(105.5, 8.5, 35, 23, 1.5, Light);
    frame.Box(119, 35, 8, 5, 0, Grey);
    frame.Box(111, 40, 24, 4, 2, Grey);
}

// ---- the file ----

/// The codes of a GIF's picture, of growing width, the lowest bit first, in blocks of 255 bytes.
class Packer {
public:
    explicit Packer(std::string& file) : file_(file) {}

    void Put(unsigned code, int bits) {
        pending_ |= code << held_;
        for (held_ += bits; held_ >= 8; held_ -= 8, pending_ >>= 8) PutByte(pending_);
    }

    void Finish() {
        if (held_ > 0) PutByte(pending_);
        Flush();
        file_ += '\0';
    }

private:
    void PutByte(std::uint32_t bits) {
        block_ += static_cast<char>(bits & 0xff);
        if (block_.size() == 255) Flush();
    }

    void Flush() {
        if (block_.empty()) return;
        file_ += static_cast<char>(block_.size());
        file_ += block_;
        block_.clear();
    }

    std::string& file_;
    std::string block_;
    std::uint32_t pending_ = 0;
    int held_ = 0;
};

void PutNumber(std::string& file, int number) {
    file += static_cast<char>(number & 0xff);
    file += static_cast<char>(number >> 8 & 0xff);
}

void PutPixels(std::string& file, const std::vector<std::uint8_t>& pixels) {
    constexpr unsigned ClearCode = 1U << ToneBits, End = ClearCode + 1, Most = 4095;
    Packer packer(file);
    std::map<std::pair<unsigned, std::uint8_t>, unsigned> known;
    unsigned next = End + 1;
    int bits = ToneBits + 1;
    packer.Put(ClearCode, bits);
    unsigned run = pixels[0];
    for (std::size_t i = 1; i < pixels.size(); ++i) {
        const auto longer = known.find({run, pixels[i]});
        if (longer != known.end()) {
            run = longer->second;
            continue;
        }
        packer.Put(run, bits);
        if (next > Most) {
            packer.Put(ClearCode, bits);
            known.clear();
            next = End + 1;
            bits = ToneBits + 1;
        } else {
            known[{run, pixels[i]}] = next;
            // The reader knows a code one step later than the writer.
            if (next++ == 1U << bits) ++bits;
        }
        run = pixels[i];
    }
    packer.Put(run, bits);
    packer.Put(End, bits);
    packer.Finish();
}

/// A file that plays over and over. `delay`: of each frame, in hundredths of a second.
std::string Gif(const std::vector<Frame>& frames, int delay) {
    using namespace std::string_literals;
    std::string file = "GIF89a";
    PutNumber(file, Width * Oversize);
    PutNumber(file, Height * Oversize);
    file += static_cast<char>(0xf0 | (ToneBits - 1)); // a table of colours for all frames
    file += "\0\0"s;
    for (const std::uint32_t tone : Tones) {
        for (const int shift : {16, 8, 0}) file += static_cast<char>(tone >> shift & 0xff);
    }
    file += "\x21\xff\x0bNETSCAPE2.0\x03\x01\0\0\0"s; // without end
    for (const Frame& frame : frames) {
        file += "\x21\xf9\x04\x09"s; // each frame replaces the one before, and has a clear ground
        PutNumber(file, delay);
        file += "\0\0\x2c\0\0\0\0"s;
        PutNumber(file, Width * Oversize);
        PutNumber(file, Height * Oversize);
        file += '\0';
        file += static_cast<char>(ToneBits);
        PutPixels(file, frame.Pixels());
    }
    return file + ';';
}

} // namespace

std::string WaitingForHotsync() {
    std::vector<Frame> frames;
    for (int step = 0; step < 5; ++step) {
        Frame frame;
        DrawHandheld(frame, Faint, Light);
        DrawComputer(frame);
        for (int wave = 0; wave < std::min(step, 3); ++wave) frame.Wave(100, 22, 12 + 13 * wave, Blue);
        frames.push_back(std::move(frame));
    }
    return Gif(frames, 45);
}

std::string SingleHotsync() {
    // The button that is to be pressed: rings go out from it, and the computer is ready.
    std::vector<Frame> frames;
    for (int step = 0; step < 6; ++step) {
        Frame frame;
        if (step >= 1 && step <= 4) {
            frame.Disc(ButtonX, ButtonY, 3 + 2.2 * step, Faint);
            frame.Disc(ButtonX, ButtonY, 1.6 + 2.2 * step, Clear);
        }
        DrawHandheld(frame, Grey, Light);
        frame.Disc(ButtonX, ButtonY, step == 0 ? 3.2 : 2.8, step < 3 ? Blue : Green);
        for (int dot = 0; dot < 5; ++dot) frame.Disc(44 + 11 * dot, 22, 1.8, dot < step ? Blue : Faint);
        DrawComputer(frame);
        frames.push_back(std::move(frame));
    }
    return Gif(frames, 25);
}

std::string HotsyncRunning() {
    constexpr int Steps = 8, Records = 3;
    constexpr double From = 22, Way = 84, Gap = Way / Records; // from behind the one to behind the other
    std::vector<Frame> frames;
    for (int step = 0; step < Steps; ++step) {
        Frame frame;
        for (int record = 0; record < Records; ++record) {
            const double gone = Gap * record + Gap * step / Steps;
            frame.Box(From + gone, 12, 9, 6, 1.5, Blue);
            frame.Box(From + Way - gone, 26, 9, 6, 1.5, Green);
        }
        DrawHandheld(frame, Grey, Light);
        DrawComputer(frame);
        frames.push_back(std::move(frame));
    }
    return Gif(frames, 9);
}
