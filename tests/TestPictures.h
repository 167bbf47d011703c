// Real encoded pictures for tests, made with stb's writer: PNG, JPEG, BMP, and a fixed GIF.
#pragma once

#include <stb_image_write.h>

#include <string>

namespace TestPictures {

inline void append(void* context, void* data, int size) {
    static_cast<std::string*>(context)->append(static_cast<const char*>(data),
                                               static_cast<std::size_t>(size));
}

// An opaque picture of `width` x `height` pixels, a gradient so it does not compress to nothing.
inline std::string pixels(int width, int height) {
    std::string rgb(static_cast<std::size_t>(width) * height * 3, '\0');
    for (std::size_t i = 0; i < rgb.size(); ++i) {
        rgb[i] = static_cast<char>((i * 37) & 0xFF);
    }
    return rgb;
}

inline std::string png(int width, int height) {
    std::string out;
    const std::string rgb = pixels(width, height);
    stbi_write_png_to_func(append, &out, width, height, 3, rgb.data(), width * 3);
    return out;
}

inline std::string jpeg(int width, int height) {
    std::string out;
    const std::string rgb = pixels(width, height);
    stbi_write_jpg_to_func(append, &out, width, height, 3, rgb.data(), 90);
    return out;
}

inline std::string bmp(int width, int height) {
    std::string out;
    const std::string rgb = pixels(width, height);
    stbi_write_bmp_to_func(append, &out, width, height, 3, rgb.data());
    return out;
}

// A 1x1 GIF (stb writes none).
inline std::string gif() {
    static const unsigned char bytes[] = {'G', 'I', 'F', '8', '9',  'a',  1,    0,   1, 0, 0x80, 0,
                                          0,   0,   0,   0,   0xFF, 0xFF, 0xFF, ',', 0, 0, 0,    0,
                                          1,   0,   1,   0,   0,    2,    2,    'D', 1, 0, ';'};
    return std::string(reinterpret_cast<const char*>(bytes), sizeof bytes);
}

// A PNG whose header claims `width` x `height` pixels over the few bytes of a tiny picture.
inline std::string pngClaiming(unsigned width, unsigned height) {
    std::string out = png(2, 2);
    for (int i = 0; i < 4; ++i) {
        out[16 + i] = static_cast<char>((width >> (24 - 8 * i)) & 0xFF);
        out[20 + i] = static_cast<char>((height >> (24 - 8 * i)) & 0xFF);
    }
    return out;
}

} // namespace TestPictures
