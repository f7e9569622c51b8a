// Hand-made files: the reading rules of every format, their odd cases and
// hostile lengths, each pinned by its status and the bytes it yields.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "storage_support.h"
#include "platform/error_report.h"

namespace kt::test {
namespace {

const Bytes kA = Counting(40, 0x20), kB = Counting(33, 0x60), kC = Counting(7, 0xA0);
const Bytes kWhole = Profile(300, 0x11);
const Bytes kTiffProfile = Profile(128, 0x33);
const Bytes kDeflated = Deflate(kWhole);

Bytes Seg56(uint32_t type, const Bytes& body, uint32_t length = 0) {
    return Cat({{0xE0}, Be16(length ? length : uint32_t(body.size() + 4)), Be32(type), body});
}

struct Case {
    const char* name;
    Bytes file;
    KtStatus status;
    Bytes profile;
};

const Case kCases[] = {
    // JPEG: pieces joined in file order, sequence numbers not looked at.
    {"jpeg_pieces_in_file_order", Jpeg({IccPiece(2, 3, kA), IccPiece(3, 3, kB), IccPiece(1, 3, kC)}), STATUS_OK,
     Cat({kA, kB, kC})},
    {"jpeg_whole_profile_behind_name", Jpeg({Segment(0xE2, Cat({Text("ICC_PROFILE"), kWhole}))}), STATUS_OK, kWhole},
    // Only a first segment can be a whole profile; later, its size's zero
    // byte makes it a piece whose first three bytes are skipped.
    {"jpeg_whole_profile_after_a_piece",
     Jpeg({IccPiece(1, 2, kA), Segment(0xE2, Cat({Text("ICC_PROFILE"), kWhole}))}), STATUS_OK,
     Cat({kA, Bytes(kWhole.begin() + 3, kWhole.end())})},
    {"jpeg_other_app2_ignored", Jpeg({Segment(0xE2, Text("FPXR\0\0\0\0")), Segment(0xE1, Text("ICC_PROFILE"))}),
     ERR_NO_ICC_PROFILE, {}},
    {"jpeg_nothing_read_past_the_scan", Jpeg({}, IccPiece(1, 1, kA)), ERR_NO_ICC_PROFILE, {}},
    {"jpeg_segment_past_end", Cat({{0xFF, 0xD8}, Be16(0xFFE2), Be16(0x4000), Text("ICC_PROFILE"), {0, 1, 1}}),
     ERR_FILE_READ, {}},
    {"jpeg_junk_instead_of_marker", Cat({{0xFF, 0xD8}, Segment(0xE0, Counting(16, 0)), {0x12, 0x34}, IccPiece(1, 1, kA)}), ERR_FILE_READ, {}},

    // TIFF: the tag's bytes at their offset, or inline when four or fewer.
    {"tiff_tag_at_offset", Tiff(128, Le32(26), kTiffProfile), STATUS_OK, kTiffProfile},
    {"tiff_tag_inline", Tiff(3, {9, 8, 7, 0}), STATUS_OK, {9, 8, 7}},
    {"tiff_tag_past_end", Tiff(129, Le32(26), kTiffProfile), ERR_FILE_READ, {}},
    {"tiff_offset_past_end", Tiff(128, Le32(0xFFFFFF00u), kTiffProfile), ERR_FILE_READ, {}},
    {"tiff_count_beyond_file", Tiff(0xFFFFFFF0u, Le32(26), kTiffProfile), ERR_FILE_READ, {}},
    {"tiff_directory_past_end", Tiff(128, Le32(26), kTiffProfile, 0x7FFFFFF0u), ERR_FILE_READ, {}},
    {"tiff_directory_count_beyond_file", Cat({Text("II"), Le16(42), Le32(8), Le16(5000), Counting(40, 0)}), ERR_FILE_READ,
     {}},
    {"tiff_without_tag", Cat({Text("MM"), Be16(42), Be32(8), Be16(1), Be16(256), Be16(3), Be32(1), Be32(64 << 16),
                              Be32(0)}),
     ERR_NO_ICC_PROFILE, {}},

    // PostScript: hex pairs of "% " lines, any case, any line end.
    {"ps_hex_pairs_lf",
     Text("%!PS-Adobe-3.0\n%%BeginICCProfile: (x) 1 Hex\n% 00aBcD\n%%skipped 1234\n% Ef0f\n%%EndICCProfile\n% 99\n"),
     STATUS_OK, {0x00, 0xAB, 0xCD, 0xEF, 0x0F}},
    {"ps_hex_pairs_crlf", Text("%!PS\r\n%%BeginICCProfile: 2\r\n% 0102\r\n% 03\r\n%%EndICCProfile\r\n"), STATUS_OK,
     {1, 2, 3}},
    {"ps_hex_pairs_cr", Text("%!PS\r%%BeginICCProfile:\r% 0102\r%x\r% 03\r%%EndICCProfile\r% 04\r"), STATUS_OK,
     {1, 2, 3}},
    {"ps_pair_scan_ends_at_other_character", Text("%!PS\n%%BeginICCProfile:\n% 0a1b 2c\n% 3d4\n% 5e\n"), STATUS_OK,
     {0x0A, 0x1B, 0x3D, 0x5E}},
    {"ps_block_runs_to_end_of_file", Text("%!PS\n%%BeginICCProfile:\n% 0102\n% 0304"), STATUS_OK, {1, 2, 3, 4}},
    // The keyword, and a data line, straddle 1,024-byte block boundaries.
    {"ps_keyword_across_block_edge",
     Text("%!PS\n%" + std::string(1010, 'x') + "\n%%BeginICCProfile:\n% " + std::string(1200, 'A') + "\n"), STATUS_OK,
     Bytes(600, 0xAA)},
    {"ps_without_block", Text("%!PS-Adobe-3.0 EPSF-3.0\n%%BoundingBox: 0 0 1 1\n%%BeginICCProfil\n"), ERR_NO_ICC_PROFILE,
     {}},
    {"eps_binary_header",
     Cat({{0xC5, 0xD0, 0xD3, 0xC6}, Le32(30), Le32(40), Counting(20, 0), Text("%!PS\n%%BeginICCProfile:\n% 7f80\n")}),
     STATUS_OK, {0x7F, 0x80}},

    // Format 56: types 0 and 1 carry bytes, type 2 ends, others are skipped.
    {"marker56_segments", Cat({Seg56(0, kA), {0xE0, 0x00, 0x05}, Seg56(1, kB), Seg56(0, {}), Seg56(2, {})}), STATUS_OK,
     Cat({kA, kB})},
    {"marker56_other_type_skipped", Cat({Seg56(1, kA), Seg56(7, kC), Seg56(1, kB), Seg56(2, {})}), STATUS_OK,
     Cat({kA, kB})},
    {"marker56_oversized_body_skipped", Cat({Seg56(1, kA), Seg56(0, {}, 0xFFFF), Seg56(2, {})}), STATUS_OK, kA},
    {"marker56_without_end", Cat({Seg56(1, kA), Counting(50, 0)}), ERR_PROFILE_SEGMENT_READ, {}},
    {"marker56_body_past_end", Cat({Seg56(1, kA), Seg56(0, {}, 200)}), ERR_PROFILE_SEGMENT_READ, {}},
    {"marker56_end_without_bytes", Seg56(2, {}), ERR_NO_ICC_PROFILE, {}},

    // Photoshop: resource 1039 after others, odd sizes padded, any
    // signature whose first byte is one of "8BIM".
    {"psd_resource_1039",
     Psd({Resource("8BIM", 1005, Counting(3, 1)), Resource("MIB8", 1036, Counting(10, 2)), Resource("8BIM", 1039, kWhole)}, 768),
     STATUS_OK, kWhole},
    {"psd_walk_ends_at_foreign_signature", Psd({Resource("XBIM", 1005, Counting(4, 1)), Resource("8BIM", 1039, kWhole)}),
     ERR_NO_ICC_PROFILE, {}},
    {"psd_without_1039", Psd({Resource("8BIM", 1005, Counting(4, 1))}), ERR_NO_ICC_PROFILE, {}},
    {"psd_profile_past_end", Psd({Cat({Text("8BIM"), Be16(1039), {0, 0}, Be32(0x7FFFFFFF)})}), ERR_FILE_READ, {}},
    {"psd_colour_mode_past_end", Psd({Resource("8BIM", 1039, kWhole)}, 0xFFFFFFF0u), ERR_FILE_READ, {}},

    // PNG: the inflated iCCP body whatever it holds (no ICC header here, a
    // grey image); a body that does not parse holds no profile.
    {"png_iccp_taken_as_it_stands", Png(Cat({Text("x"), {0, 0}, kDeflated})), STATUS_OK, kWhole},
    {"png_iccp_stream_cut", Png(Cat({Text("x"), {0, 0}, Bytes(kDeflated.begin(), kDeflated.end() - 9)})), ERR_NO_ICC_PROFILE, {}},
    {"png_iccp_without_name", Png(Cat({{0, 0}, kDeflated})), ERR_NO_ICC_PROFILE, {}},
    {"png_without_iccp", Png({}), ERR_NO_ICC_PROFILE, {}},

    // WebP: the ICCP chunk's size rounded up to even, pad byte included.
    {"webp_odd_iccp", Webp({Chunk("VP8 ", Counting(5, 1)), Chunk("ICCP", kC)}), STATUS_OK, Cat({kC, {0}})},
    {"webp_lossless_iccp_first", Webp({Chunk("VP8L", Counting(6, 1)), Chunk("ICCP", kA)}), STATUS_OK, kA},
    {"webp_without_iccp", Webp({Chunk("VP8X", Counting(10, 0)), Chunk("VP8 ", Counting(6, 1))}), ERR_NO_ICC_PROFILE, {}},
    {"webp_chunk_past_end", Webp({Chunk("VP8 ", Counting(6, 1)), Cat({Text("ICCP"), Le32(0x10000), kA})}),
     ERR_CHUNK_TOO_LARGE, {}},
    {"webp_chunk_past_riff_size", Webp({Chunk("VP8 ", Counting(6, 1)), Chunk("ICCP", kA)}, 30), ERR_CHUNK_TOO_LARGE, {}},
    {"webp_head_cut_short", Webp({Chunk("VP8 ", Counting(6, 1)), Text("ICC")}, 1000), ERR_RIFF_SHORT_READ, {}},
    {"webp_iccp_data_cut_short", Webp({Chunk("VP8L", Counting(6, 1)), Cat({Text("ICCP"), Le32(7), Counting(7, 0)})}),
     ERR_RIFF_SHORT_READ, {}},
    {"webp_riff_size_too_small", Webp({Chunk("VP8 ", Counting(6, 1)), Chunk("ICCP", kA)}, 19), ERR_NO_ICC_PROFILE, {}},
};

using HandmadeFiles = WithPngCodec;

TEST_F(HandmadeFiles, YieldTheirProfileOrStatus) {
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        const std::string path = dir_.Write(c.name, c.file);
        report::Clear();
        // A record's earlier bytes stay the caller's when the file holds no
        // profile; a failed read or a profile found replaces them.
        uint8_t earlier[4] = {1, 2, 3, 4};
        ICCProfileRecord record{KTCLR_SIZEOF_ICC_PROFILE_RECORD, sizeof earlier, 0, nullptr, 0, nullptr, nullptr, earlier};
        EXPECT_EQ(Vx_LoadICCProfile(Wide(path).c_str(), &record, nullptr), c.status);
        EXPECT_EQ(record.profileData == earlier, c.status == ERR_NO_ICC_PROFILE);
        EXPECT_EQ(Bytes(record.profileData, record.profileData + record.profileSize),
                  c.status == ERR_NO_ICC_PROFILE ? Bytes(earlier, earlier + 4) : c.profile);
        if (record.profileData != earlier) Vx_FreeICCProfile(&record);
        // A RIFF read cut short goes through the error report as well.
        EXPECT_EQ(report::Last(), c.status == ERR_RIFF_SHORT_READ ? c.status : STATUS_OK);
    }
}

// Every prefix of every case (a file cut anywhere) ends in a status of the
// loader's own, never outside the file's bytes (the sanitizer build watches).
TEST_F(HandmadeFiles, EveryTruncationEndsInAStatus) {
    const std::string path = dir_.File("cut");
    const KtStatus allowed[] = {STATUS_OK, ERR_NO_ICC_PROFILE, ERR_FILE_READ, ERR_FORMAT_NOT_SUPPORTED,
                                ERR_PROFILE_SEGMENT_READ, ERR_CHUNK_TOO_LARGE, ERR_RIFF_SHORT_READ};
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        for (std::size_t n = 0; n < c.file.size(); n += 1 + n / 16) {
            WriteAll(path, Bytes(c.file.begin(), c.file.begin() + static_cast<std::ptrdiff_t>(n)));
            const auto loaded = Load(path);
            EXPECT_NE(std::find(std::begin(allowed), std::end(allowed), loaded.status), std::end(allowed))
                << n << " bytes: " << loaded.status;
        }
    }
}

}  // namespace
}  // namespace kt::test
