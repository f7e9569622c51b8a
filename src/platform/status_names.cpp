// Vx_ClrGetStatusName and Vx_ClrGetStatusText: every status in words, for
// messages. One table; a value not in it answers "UNKNOWN_STATUS".
#include <ktclr/status.h>

#include <cstddef>

namespace {

struct StatusWords {
    KtStatus value;
    const char* name;
    const char* text;
};

constexpr StatusWords kStatuses[] = {
    {STATUS_OK, "STATUS_OK", "success"},
    {ERR_NO_MEMORY, "ERR_NO_MEMORY", "out of memory, or a file name could not be converted"},
    {ERR_ALLOC, "ERR_ALLOC", "out of memory in the conversion engine"},
    {ERR_FILE_SEEK, "ERR_FILE_SEEK", "a position in the file could not be reached"},
    {ERR_FILE_WRITE, "ERR_FILE_WRITE", "writing the file failed"},
    {ERR_FILE_READ, "ERR_FILE_READ", "reading the file failed or it is shorter than it says"},
    {ERR_FILE_NOT_FOUND, "ERR_FILE_NOT_FOUND", "no such file, or its path is longer than 259 characters"},
    {ERR_TIFF_DIRECTORY_COUNT, "ERR_TIFF_DIRECTORY_COUNT", "the table file's TIFF directory count is not 1 to 999"},
    {ERR_BAD_SIZE, "ERR_BAD_SIZE", "width or height below 1, or a table image too small"},
    {ERR_INVALID_PARAMETER, "ERR_INVALID_PARAMETER", "an argument is missing, unreadable or out of range"},
    {ERR_FILE_CREATE, "ERR_FILE_CREATE", "the file could not be created or opened"},
    {ERR_TIFF_SAMPLES, "ERR_TIFF_SAMPLES", "the table file does not have 3 or 4 samples per pixel"},
    {ERR_INVALID_TAG, "ERR_INVALID_TAG", "the tag is absent or malformed"},
    {ERR_BAD_POINTER, "ERR_BAD_POINTER", "a record or buffer is not accessible over its extent"},
    {ERR_INVALID_COLOR_HANDLE, "ERR_INVALID_COLOR_HANDLE", "not a live conversion handle"},
    {ERR_BUFFER_TOO_SMALL, "ERR_BUFFER_TOO_SMALL", "the buffer is too small"},
    {ERR_SAME_BUFFER, "ERR_SAME_BUFFER", "this conversion cannot be done in place"},
    {ERR_BAD_COLOR_SPACE, "ERR_BAD_COLOR_SPACE", "the color space is unknown or has no format for this method"},
    {ERR_BAD_METHOD, "ERR_BAD_METHOD", "the method is unknown, not prepared or not available for this pair"},
    {ERR_PROFILE_OPEN, "ERR_PROFILE_OPEN", "the profile could not be opened"},
    {ERR_PROFILE_COUNT, "ERR_PROFILE_COUNT", "a transform needs 1 to 255 profiles"},
    {ERR_BAD_STRUCT_SIZE, "ERR_BAD_STRUCT_SIZE", "a record's size field has no accepted value"},
    {ERR_NO_ICC_FORMAT, "ERR_NO_ICC_FORMAT", "a color space of this conversion has no ICC pixel format"},
    {ERR_ODD_WIDTH, "ERR_ODD_WIDTH", "the width is not a multiple of the packed pixel group"},
    {ERR_BAD_PLANAR_SIZE, "ERR_BAD_PLANAR_SIZE", "planar width and height must be multiples of 4"},
    {ERR_NO_ICC_PROFILE, "ERR_NO_ICC_PROFILE", "the image holds no ICC profile"},
    {ERR_PROFILE_SEGMENT_READ, "ERR_PROFILE_SEGMENT_READ", "reading the image's segments failed"},
    {ERR_NULL_ARGUMENT, "ERR_NULL_ARGUMENT", "a required pointer is null"},
    {ERR_ICC_INVALID_PROFILE, "ERR_ICC_INVALID_PROFILE", "the profile is shorter than its size field says"},
    {ERR_CODEC_FUNCTION_MISSING, "ERR_CODEC_FUNCTION_MISSING", "the PNG codec module is unavailable"},
    {ERR_UNSUPPORTED_SPACE, "ERR_UNSUPPORTED_SPACE", "the color space is out of range or has no built-in profile"},
    {WARN_UNKNOWN_TAG, "WARN_UNKNOWN_TAG", "done; the tag signature is not a known one"},
    {WARN_UNKNOWN_TAG_TYPE, "WARN_UNKNOWN_TAG_TYPE", "done; the tag type has no codec and was kept as bytes"},
    {WARN_UNKNOWN_TAG_AND_TYPE, "WARN_UNKNOWN_TAG_AND_TYPE", "done; neither the tag nor its type is a known one"},
    {ERR_ICC_SIZE_MISMATCH, "ERR_ICC_SIZE_MISMATCH", "the profile's size field disagrees with its contents"},
    {ERR_FORMAT_NOT_SUPPORTED, "ERR_FORMAT_NOT_SUPPORTED", "this image format cannot hold or give up a profile here"},
    {ERR_NO_UNICODE_TRANSLATION, "ERR_NO_UNICODE_TRANSLATION", "the text cannot be converted between narrow and wide characters"},
    {ERR_DEFAULT_CHAR_USED, "ERR_DEFAULT_CHAR_USED", "a character had no narrow form and was replaced"},
    {ERR_CHUNK_TOO_LARGE, "ERR_CHUNK_TOO_LARGE", "a RIFF chunk runs past the end of the file"},
    {ERR_TIFF_NOT_TIFF, "ERR_TIFF_NOT_TIFF", "the table file is not a TIFF file"},
    {ERR_RIFF_SHORT_READ, "ERR_RIFF_SHORT_READ", "a RIFF chunk is cut short by the end of the file"},
};

const StatusWords* Find(KtStatus status) noexcept {
    for (const StatusWords& s : kStatuses) {
        if (s.value == status) return &s;
    }
    return nullptr;
}

}  // namespace

extern "C" KTCLR_API const char* Vx_ClrGetStatusName(KtStatus status) {
    const StatusWords* s = Find(status);
    return s ? s->name : "UNKNOWN_STATUS";
}

extern "C" KTCLR_API const char* Vx_ClrGetStatusText(KtStatus status) {
    const StatusWords* s = Find(status);
    return s ? s->text : "unknown status";
}
