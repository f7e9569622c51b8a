// The 18 color spaces by name, their byte layouts, and which conversion
// methods serve which pairs when driven through the public interface.
#pragma once

#include <string>

namespace ktcli {

struct SpaceInfo {
    int id;
    const char* name;    // command-line name
    int bits;            // bits per pixel
    const char* layout;  // bytes of one pixel, in memory order
};

const SpaceInfo* SpaceById(int id);
const SpaceInfo* SpaceByName(const std::string& name);  // case-insensitive
const SpaceInfo* AllSpaces(int* count);
std::string SpaceNames();  // "rgb, yuv, ..." for messages

// Bytes of `rows` packed rows of `width` pixels in a space.
size_t RowBytes(int space, int width);

enum class Method { Builtin, Icc, CustomIcc, Emulation, CustomEmulation };
inline constexpr Method kMethods[] = {Method::Builtin, Method::Icc, Method::CustomIcc, Method::Emulation,
                                      Method::CustomEmulation};
const char* MethodName(Method m);
bool MethodByName(const std::string& name, Method* m);
std::string MethodNames();  // "builtin, icc, ..." for messages

// Rendering intents by their command-line names, in ICC order (0 to 3).
inline constexpr const char* kIntentNames[] = {"perceptual", "relative", "saturation", "absolute"};
unsigned MethodBit(Method m);

// Whether a method converts src -> dst, as the tool drives it.
bool Serves(Method m, int src, int dst);
// "builtin, icc" for the methods that serve a pair.
std::string ServingMethods(int src, int dst);
// Built-in profile selector of a space for ICC methods, or 0 when none.
int BuiltinProfileFor(int space);
// ICC color-space signature of a space's pixels ('RGB ', 'CMYK', ...), or 0.
uint32_t IccSignatureFor(int space);

}  // namespace ktcli
