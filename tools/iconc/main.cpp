// Rasterises SVG icons into a UIL module of icon literals.
//
//   iconc --out FILE.uil --module NAME --unit PIXELS [--suffix S] [--bitmap] SVG...
//
// One unit of an icon's view box becomes PIXELS pixels (a fraction is allowed). For NAME.svg the
// module exports NAME<S>_icon and NAME<S>_iconi, the same on the selection's dark ground. With
// --bitmap it exports NAME<S>_icon and the mask NAME<S>m_icon, both of two colours. Pixels take the
// nearest colour of the palette; transparent ones become the background colour, which the program
// chooses, or on the selection's ground the foreground colour.
#include <cairo.h>
#include <librsvg/rsvg.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <limits>
#include <ranges>
#include <string>
#include <string_view>
#include <vector>

namespace {

struct COLOUR {
    int r, g, b;
};

constexpr COLOUR light_ground{0xF7, 0xF8, 0xFA};
constexpr COLOUR dark_ground{0x1F, 0x5F, 0x8B}; // the accent of the application's resources

// The drawing's own colours; blends of each with the ground smooth the edges.
struct INK {
    COLOUR on_light;
    COLOUR on_dark;
};
constexpr INK inks[] = {
    {{0x26, 0x32, 0x3E}, {0xF0, 0xF5, 0xF9}}, // outline
    {{0x84, 0x97, 0xAA}, {0xB4, 0xCC, 0xDD}}, // tone
    {{0xD6, 0xE0, 0xE9}, {0x4A, 0x82, 0xA9}}, // light fill
    {{0xFF, 0xFF, 0xFF}, {0x16, 0x4A, 0x6E}}, // paper
    {{0x2F, 0x6F, 0xB3}, {0xA6, 0xD2, 0xF7}}, // accent
    {{0x2A, 0x8A, 0x57}, {0x8F, 0xE6, 0xB6}}, // go
    {{0xC0, 0x3A, 0x2B}, {0xFF, 0xB3, 0xA8}}, // stop
    {{0xC9, 0x84, 0x12}, {0xF8, 0xD0, 0x80}}, // lock and key
    {{0xB3, 0xBC, 0xC5}, {0x86, 0xA9, 0xC2}}, // insensitive outline
};
// The forms in which an image is written.
struct FORM {
    const char* ending; // of its name
    COLOUR INK::*ink;
    COLOUR ground;
    const char* ground_name;
};
constexpr FORM forms[] = {{"_icon", &INK::on_light, light_ground, "background color"},
                          {"_iconi", &INK::on_dark, dark_ground, "foreground color"}};

constexpr std::array blends{1.0, 0.66, 0.33};
constexpr int least_distance = 1200; // of a blend from the ground, to be worth a colour
constexpr std::size_t most_colours = 6; // of an icon
constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
static_assert(std::size(inks) * blends.size() <= letters.size());

COLOUR mix(COLOUR a, COLOUR b, double share) {
    const auto channel = [&](int x, int y) {
        return static_cast<int>(std::lround(x * share + y * (1 - share)));
    };
    return {channel(a.r, b.r), channel(a.g, b.g), channel(a.b, b.b)};
}

int distance(COLOUR a, COLOUR b) {
    return (a.r - b.r) * (a.r - b.r) + (a.g - b.g) * (a.g - b.g) + (a.b - b.b) * (a.b - b.b);
}

[[noreturn]] void fail(const std::string& text) {
    std::cerr << "iconc: " << text << '\n';
    std::exit(1);
}

struct IMAGE {
    int width, height;
    std::vector<std::uint32_t> argb; // premultiplied
};

IMAGE rasterise(const std::string& file, double unit) {
    GError* error = nullptr;
    RsvgHandle* handle = rsvg_handle_new_from_file(file.c_str(), &error);
    if (handle == nullptr) {
        fail(file + ": " + error->message);
    }
    RsvgRectangle box;
    gboolean has_width, has_height, has_box;
    RsvgLength width, height;
    rsvg_handle_get_intrinsic_dimensions(handle, &has_width, &width, &has_height, &height, &has_box,
                                         &box);
    if (!has_box) {
        fail(file + ": no viewBox");
    }
    IMAGE image{static_cast<int>(std::lround(box.width * unit)),
                static_cast<int>(std::lround(box.height * unit)),
                {}};
    cairo_surface_t* surface =
        cairo_image_surface_create(CAIRO_FORMAT_ARGB32, image.width, image.height);
    cairo_t* cr = cairo_create(surface);
    const RsvgRectangle viewport{0, 0, static_cast<double>(image.width),
                                 static_cast<double>(image.height)};
    if (!rsvg_handle_render_document(handle, cr, &viewport, &error)) {
        fail(file + ": " + error->message);
    }
    cairo_surface_flush(surface);
    const unsigned char* data = cairo_image_surface_get_data(surface);
    const int stride = cairo_image_surface_get_stride(surface);
    for (int y = 0; y < image.height; ++y) {
        const auto* row = reinterpret_cast<const std::uint32_t*>(data + y * stride);
        image.argb.insert(image.argb.end(), row, row + image.width);
    }
    cairo_destroy(cr);
    cairo_surface_destroy(surface);
    g_object_unref(handle);
    return image;
}

int alpha(std::uint32_t pixel) {
    return static_cast<int>(pixel >> 24);
}

COLOUR over(std::uint32_t pixel, COLOUR ground) {
    const double rest = 1 - alpha(pixel) / 255.0;
    const auto channel = [&](int shift, int g) {
        return static_cast<int>(std::lround(static_cast<int>(pixel >> shift & 0xFF) + g * rest));
    };
    return {channel(16, ground.r), channel(8, ground.g), channel(0, ground.b)};
}

// A colour of the palette, in each form. Both forms use the same letters: only the colour tables
// differ.
struct SHADE {
    char letter;
    COLOUR colours[std::size(forms)];
};

const std::vector<SHADE> palette = [] {
    std::vector<SHADE> shades{{' ', {light_ground, dark_ground}}};
    std::size_t index = 0;
    for (const INK& ink : inks) {
        for (const double blend : blends) {
            SHADE shade{letters[index++], {}};
            for (std::size_t i = 0; i < std::size(forms); ++i) {
                shade.colours[i] = mix(ink.*forms[i].ink, forms[i].ground, blend);
            }
            if (blend == 1 || distance(shade.colours[0], light_ground) >= least_distance) {
                shades.push_back(shade);
            }
        }
    }
    return shades;
}();

char nearest_letter(std::uint32_t pixel) {
    if (alpha(pixel) < 24) {
        return ' ';
    }
    const COLOUR seen = over(pixel, light_ground);
    return std::ranges::min_element(palette, {}, [&](const SHADE& shade) {
               return distance(seen, shade.colours[0]);
           })->letter;
}

// How much worse an image looks when a shade takes another's place in so many pixels.
long loss(const SHADE& shade, const SHADE& other, long pixels) {
    long sum = 0;
    for (std::size_t i = 0; i < std::size(forms); ++i) {
        sum += distance(shade.colours[i], other.colours[i]);
    }
    return sum * pixels;
}

// The image in letters of the palette, with most_colours of them beside the ground: the X server is
// asked for each colour of each table when the icons are loaded. What shows least goes first.
std::string draw(const IMAGE& image) {
    std::string picture;
    std::ranges::transform(image.argb, std::back_inserter(picture), nearest_letter);
    for (;;) {
        std::vector<const SHADE*> used{&palette.front()}; // the ground may be taken instead
        for (const SHADE& shade : palette | std::views::drop(1)) {
            if (picture.find(shade.letter) != std::string::npos) {
                used.push_back(&shade);
            }
        }
        if (used.size() <= most_colours + 1) {
            return picture;
        }
        long least = std::numeric_limits<long>::max();
        char from = ' ';
        char to = ' ';
        for (const SHADE* shade : used | std::views::drop(1)) {
            const long pixels = std::ranges::count(picture, shade->letter);
            for (const SHADE* other : used) {
                const long lost = loss(*shade, *other, pixels);
                if (other != shade && lost < least) {
                    least = lost;
                    from = shade->letter;
                    to = other->letter;
                }
            }
        }
        std::ranges::replace(picture, from, to);
    }
}

// The colour table of a picture in one form.
void write_colours(std::ostream& out, const std::string& name, std::size_t form,
                   std::string_view picture) {
    out << "value\n    " << name << ": color_table(" << forms[form].ground_name << " = ' '";
    for (const SHADE& shade : palette | std::views::drop(1)) {
        if (picture.find(shade.letter) != std::string_view::npos) {
            const COLOUR& c = shade.colours[form];
            char text[64];
            std::snprintf(text, sizeof text, ",\n        color('#%02X%02X%02X') = '%c'", c.r, c.g,
                          c.b, shade.letter);
            out << text;
        }
    }
    out << ");\n";
}

void write_icon(std::ostream& out, const std::string& name, const std::string& colours,
                std::string_view picture, int width) {
    out << "value\n    " << name << ": exported icon(color_table = " << colours;
    for (std::size_t i = 0; i < picture.size(); i += static_cast<std::size_t>(width)) {
        out << ",\n        '" << picture.substr(i, static_cast<std::size_t>(width)) << '\'';
    }
    out << ");\n";
}

} // namespace

int main(int argc, char** argv) {
    std::string out_name, module, suffix;
    double unit = 1;
    bool bitmap = false;
    std::vector<std::string> files;
    for (int i = 1; i < argc; ++i) {
        const std::string_view option = argv[i];
        const auto value = [&]() -> const char* {
            if (++i == argc) {
                fail(std::string(option) + " needs a value");
            }
            return argv[i];
        };
        if (option == "--out") {
            out_name = value();
        } else if (option == "--module") {
            module = value();
        } else if (option == "--suffix") {
            suffix = value();
        } else if (option == "--unit") {
            unit = std::atof(value());
        } else if (option == "--bitmap") {
            bitmap = true;
        } else if (option.starts_with("--")) {
            fail("unknown option " + std::string(option));
        } else {
            files.emplace_back(option);
        }
    }
    if (out_name.empty() || module.empty() || unit <= 0 || files.empty()) {
        fail(
            "usage: iconc --out FILE.uil --module NAME --unit PIXELS [--suffix S] [--bitmap] SVG...");
    }
    std::ofstream out(out_name);
    out << "module " << module << "\n    names = case_sensitive\n";
    if (bitmap) {
        out << "value\n    two_colours: color_table(background color = ' ', foreground color = '*');\n";
    }
    for (const std::string& file : files) {
        const IMAGE image = rasterise(file, unit);
        const std::string name = std::filesystem::path(file).stem().string() + suffix;
        if (bitmap) {
            std::string picture, mask;
            for (const std::uint32_t pixel : image.argb) {
                mask += alpha(pixel) >= 128 ? '*' : ' ';
                picture += mask.back() == '*' && over(pixel, light_ground).g < 128 ? '*' : ' ';
            }
            write_icon(out, name + "_icon", "two_colours", picture, image.width);
            write_icon(out, name + "m_icon", "two_colours", mask, image.width);
        } else {
            const std::string picture = draw(image);
            for (std::size_t i = 0; i < std::size(forms); ++i) {
                const std::string literal = name + forms[i].ending;
                write_colours(out, literal + "_colours", i, picture);
                write_icon(out, literal, literal + "_colours", picture, image.width);
            }
        }
    }
    out << "end module;\n";
    out.close();
    if (!out) {
        fail("cannot write " + out_name);
    }
    return 0;
}
