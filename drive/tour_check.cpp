// Looks at the tour's pictures for text a watch owner could not read whole: text cut by the
// round edge of the screen in its middle band (15 % to 85 % of the height), or by the box it
// is drawn in. Each picture NAME.png is read with its dump NAME.json, whose "text_boxes" say
// where texts are drawn.
//
//     quillset-tour-check DIR...      (exit status 1 when a picture shows cut text)

#include <Ecore.h>
#include <Ecore_Evas.h>
#include <Evas.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdlib>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

// Text is drawn in light colours on black; its anti-aliased edges are darker.
const int kBright = 110;
// Closer than this to the circle, a glyph is cut or about to be.
const double kEdgeMargin = 5.0;
const double kBandTop = 0.15, kBandBottom = 0.85;

struct Picture {
    int w = 0, h = 0;
    std::vector<unsigned int> pixels;  // ARGB
    bool bright(int x, int y) const {
        unsigned int p = pixels[static_cast<size_t>(y) * w + x];
        return std::max({(p >> 16) & 0xff, (p >> 8) & 0xff, p & 0xff}) >= kBright;
    }
};

bool load(Evas *canvas, const std::string &path, Picture *picture) {
    Evas_Object *image = evas_object_image_add(canvas);
    evas_object_image_file_set(image, path.c_str(), nullptr);
    bool ok = evas_object_image_load_error_get(image) == EVAS_LOAD_ERROR_NONE;
    if (ok) {
        evas_object_image_size_get(image, &picture->w, &picture->h);
        int stride = evas_object_image_stride_get(image) / 4;
        auto *data = static_cast<unsigned int *>(evas_object_image_data_get(image, EINA_FALSE));
        ok = data && picture->w > 0 && picture->h > 0;
        if (ok) {
            picture->pixels.resize(static_cast<size_t>(picture->w) * picture->h);
            for (int y = 0; y < picture->h; ++y)
                std::copy(data + static_cast<size_t>(y) * stride,
                          data + static_cast<size_t>(y) * stride + picture->w,
                          picture->pixels.begin() + static_cast<size_t>(y) * picture->w);
        }
    }
    evas_object_del(image);
    return ok;
}

// The faults of one picture, in words.
std::vector<std::string> check(const Picture &pic, const nlohmann::json &boxes) {
    std::vector<std::string> faults;
    double cx = pic.w / 2.0, cy = pic.h / 2.0, r = std::min(pic.w, pic.h) / 2.0;
    int bandTop = static_cast<int>(pic.h * kBandTop),
        bandBottom = static_cast<int>(pic.h * kBandBottom);
    for (const auto &box : boxes) {
        if (!box.is_array() || box.size() != 4)
            continue;
        int x0 = std::max(0, box[0].get<int>()), y0 = std::max(bandTop, box[1].get<int>());
        int x1 = std::min(pic.w, box[0].get<int>() + box[2].get<int>());
        int y1 = std::min(bandBottom, box[1].get<int>() + box[3].get<int>());
        std::string where = "text box " + box.dump();
        bool edge = false, leftCut = false, rightCut = false;
        for (int y = y0; y < y1; ++y) {
            for (int x = x0; x < x1; ++x) {
                if (!pic.bright(x, y))
                    continue;
                double d = std::hypot(x + 0.5 - cx, y + 0.5 - cy);
                if (!edge && d > r - kEdgeMargin) {
                    edge = true;
                    faults.push_back(where + ": cut by the round edge at " + std::to_string(x) +
                                     "," + std::to_string(y));
                }
            }
            // Ink on the box's outermost columns runs on past them, where it is clipped.
            leftCut = leftCut || (x0 > 0 && x0 < x1 && pic.bright(x0, y));
            rightCut = rightCut || (x1 < pic.w && x1 > x0 && pic.bright(x1 - 1, y));
        }
        if (leftCut || rightCut)
            faults.push_back(where + ": cut by its box on the " + (leftCut ? "left" : "right"));
    }
    return faults;
}

}  // namespace

int main(int argc, char **argv) {
    if (argc < 2) {
        std::cerr << "usage: quillset-tour-check DIR...\n";
        return 2;
    }
    // No system bus is needed to read pictures.
    setenv("ECORE_NO_SYSTEM_MODULES", "1", 1);
    if (!ecore_evas_init())
        return 2;
    Ecore_Evas *ee = ecore_evas_buffer_new(1, 1);
    Evas *canvas = ee ? ecore_evas_get(ee) : nullptr;
    if (!canvas) {
        std::cerr << "quillset-tour-check: no canvas\n";
        return 2;
    }
    int pictures = 0, bad = 0;
    for (int i = 1; i < argc; ++i) {
        std::error_code error;
        for (auto it = fs::recursive_directory_iterator(argv[i], error);
             !error && it != fs::recursive_directory_iterator(); it.increment(error)) {
            const fs::path &png = it->path();
            if (png.extension() != ".png")
                continue;
            fs::path dump = fs::path(png).replace_extension(".json");
            std::ifstream in(dump);
            nlohmann::json screen = nlohmann::json::parse(in, nullptr, false);
            if (screen.is_discarded() || !screen.contains("text_boxes"))
                continue;
            Picture picture;
            if (!load(canvas, png.string(), &picture)) {
                std::cerr << png.string() << ": unreadable\n";
                ++bad;
                continue;
            }
            ++pictures;
            std::vector<std::string> faults = check(picture, screen["text_boxes"]);
            if (!faults.empty())
                ++bad;
            for (const std::string &fault : faults)
                std::cout << png.string() << ": " << fault << "\n";
        }
        if (error) {
            std::cerr << "quillset-tour-check: " << argv[i] << ": " << error.message() << "\n";
            ++bad;
        }
    }
    std::cout << "tour check: " << pictures << " pictures, " << bad << " with cut text\n";
    ecore_evas_free(ee);
    ecore_evas_shutdown();
    return bad == 0 && pictures > 0 ? 0 : 1;
}
