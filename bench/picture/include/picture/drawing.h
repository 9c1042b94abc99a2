#pragma once

#include <filesystem>
#include <string>

#include "picture/image.h"

namespace bench {

// The picture at the given width, each pixel the mean of what it covers. Not for enlarging.
Image Shrink(const Image& image, int width);

// Copies `source` into `target` with its upper left corner at (x, y). What does not fit is cut off.
void Paste(const Image& source, Image& target, int x, int y);

// Writes a line of text in white, two pixels to a dot.
void WriteCaption(Image& image, int x, int y, const std::string& text);

// False when the file could not be written.
bool SavePng(const Image& image, const std::filesystem::path& path);
// Empty when the file cannot be read.
Image LoadPng(const std::filesystem::path& path);

}  // namespace bench
