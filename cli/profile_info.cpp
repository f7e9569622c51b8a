// `ktclr profile info`: a profile's header in words and its tag table with
// short decoded values, as text or JSON, through the profile interface.
#include "profile_info.h"

#include <cstdio>
#include <cstring>

#include "image.h"

namespace ktcli {
namespace {

const char* ClassName(uint32_t c) {
    switch (c) {
    case KTCLR_ICC_SIG('s', 'c', 'n', 'r'): return "input device";
    case KTCLR_ICC_SIG('m', 'n', 't', 'r'): return "display device";
    case KTCLR_ICC_SIG('p', 'r', 't', 'r'): return "output device";
    case KTCLR_ICC_SIG('l', 'i', 'n', 'k'): return "device link";
    case KTCLR_ICC_SIG('s', 'p', 'a', 'c'): return "color space";
    case KTCLR_ICC_SIG('a', 'b', 's', 't'): return "abstract";
    case KTCLR_ICC_SIG('n', 'm', 'c', 'l'): return "named color";
    default: return "unknown class";
    }
}

const char* IntentName(uint32_t i) {
    static const char* const names[] = {"perceptual", "media-relative colorimetric", "saturation",
                                        "ICC-absolute colorimetric"};
    return i < 4 ? names[i] : "unknown";
}

std::string Printable(const std::string& s, size_t limit = 64) {
    std::string out;
    for (char c : s) {
        if (out.size() >= limit) return out + "...";
        out += (c >= 32 && c < 127) ? c : '?';
    }
    return out;
}

std::string Fixed(int32_t v) {
    char b[32];
    snprintf(b, sizeof b, "%.4f", Vx_2bFixed2bNumberToDouble(v));
    return b;
}

// Room for any tag record the library fills (the largest public record is
// far smaller).
union AnyTag {
    ICCRawTagType raw;
    ICCXYZType xyz;
    ICCTextType text;
    ICCCurveType curve;
    ICCParametricCurveType para;
    ICCLut16 lut;
    ICCLutAtoB lutAB;
    ICCMultiLocalizedUnicodeType mluc;
    ICCSignatureType sig;
    unsigned char room[1024];
};

std::string Narrow(const KtChar16* text, size_t units) {
    std::string s;
    for (size_t i = 0; i < units && text[i]; ++i) s += text[i] < 128 ? static_cast<char>(text[i]) : '?';
    return s;
}

std::string Decode(ICCProfileRecord* r, uint32_t tag, uint32_t type, std::string* problem) {
    AnyTag t;
    memset(&t, 0, sizeof t);
    const KtStatus s = Vx_GetICCTagData(r, &t, tag);
    if (s != STATUS_OK && s != WARN_UNKNOWN_TAG && s != WARN_UNKNOWN_TAG_TYPE && s != WARN_UNKNOWN_TAG_AND_TYPE) {
        *problem = std::string(Vx_ClrGetStatusName(s)) + " " + std::to_string(s);
        return "";
    }
    std::string v;
    switch (type) {
    case KTCLR_ICC_SIG('X', 'Y', 'Z', ' '):
        if (t.xyz.count > 0 && t.xyz.values)
            v = "X " + Fixed(t.xyz.values[0].X) + " Y " + Fixed(t.xyz.values[0].Y) + " Z " + Fixed(t.xyz.values[0].Z);
        break;
    case KTCLR_ICC_SIG('c', 'u', 'r', 'v'):
        v = t.curve.count == 0   ? "identity"
            : t.curve.count == 1 ? "gamma " + std::to_string(Vx_U8Fixed8NumberToDouble(t.curve.entries[0])).substr(0, 5)
                                 : std::to_string(t.curve.count) + " entries";
        break;
    case KTCLR_ICC_SIG('p', 'a', 'r', 'a'): v = "function type " + std::to_string(t.para.functionType); break;
    case KTCLR_ICC_SIG('t', 'e', 'x', 't'):
        if (t.text.text) v = Printable(Narrow(static_cast<const KtChar16*>(t.text.text), t.text.count));
        break;
    case KTCLR_ICC_SIG('m', 'l', 'u', 'c'):
        if (t.mluc.count > 0 && t.mluc.strings && t.mluc.records)
            v = Printable(Narrow(t.mluc.strings, t.mluc.records[0].length / 2));
        break;
    case KTCLR_ICC_SIG('d', 'e', 's', 'c'):  // kept as raw bytes: count, then ASCII
        if (t.raw.bytes && t.raw.byteCount > 4) {
            const uint32_t n = static_cast<uint32_t>(Vx_ClrIntIccGetBytes(t.raw.bytes, 4));
            const uint32_t room = t.raw.byteCount - 4;
            v = Printable(std::string(reinterpret_cast<const char*>(t.raw.bytes) + 4, strnlen(
                reinterpret_cast<const char*>(t.raw.bytes) + 4, n < room ? n : room)));
        }
        break;
    case KTCLR_ICC_SIG('m', 'f', 't', '1'):
    case KTCLR_ICC_SIG('m', 'f', 't', '2'):
        v = std::to_string(t.lut.inputChannels) + " in, " + std::to_string(t.lut.outputChannels) + " out, " +
            std::to_string(t.lut.gridPoints) + " grid points";
        break;
    case KTCLR_ICC_SIG('m', 'A', 'B', ' '):
    case KTCLR_ICC_SIG('m', 'B', 'A', ' '):
        v = std::to_string(t.lutAB.inputChannels) + " in, " + std::to_string(t.lutAB.outputChannels) + " out" +
            (t.lutAB.offsetCLUT ? ", CLUT" : "") + (t.lutAB.offsetMatrix ? ", matrix" : "");
        break;
    case KTCLR_ICC_SIG('s', 'i', 'g', ' '): v = SigText(t.sig.value); break;
    default: break;
    }
    Vx_FreeICCTagType(&t, type);
    return v;
}

std::string Json(const std::string& s) {
    std::string out = "\"";
    for (char c : s) {
        if (c == '"' || c == '\\') out += '\\';
        if (static_cast<unsigned char>(c) < 32) {
            char b[8];
            snprintf(b, sizeof b, "\\u%04x", c);
            out += b;
            continue;
        }
        out += c;
    }
    return out + "\"";
}

std::string Sig4(uint32_t sig) {
    if (sig == 0) return "none";
    std::string s = SigText(sig);
    return s.substr(1, 4);
}

}  // namespace

void PrintProfileInfo(const std::string& name, const Bytes& bytes, bool json, FILE* out) {
    ProfileRecord p;
    p.Fill(bytes);
    const ICCHeader& h = *p.r.header;
    char version[32], date[40], id[40];
    snprintf(version, sizeof version, "%u.%u.%u", h.version >> 24, (h.version >> 20) & 15, (h.version >> 16) & 15);
    snprintf(date, sizeof date, "%04u-%02u-%02u %02u:%02u:%02u", h.dateTime[0], h.dateTime[1], h.dateTime[2],
             h.dateTime[3], h.dateTime[4], h.dateTime[5]);
    for (int i = 0; i < 16; ++i) snprintf(id + 2 * i, 3, "%02x", h.profileId[i]);
    const std::string illuminant = Fixed(h.illuminant.X) + " " + Fixed(h.illuminant.Y) + " " + Fixed(h.illuminant.Z);
    const std::pair<const char*, std::string> fields[] = {
        {"size", std::to_string(h.size)},
        {"cmm", Sig4(h.cmmType)},
        {"version", version},
        {"class", Sig4(h.deviceClass) + " (" + ClassName(h.deviceClass) + ")"},
        {"color space", Sig4(h.colorSpace)},
        {"connection space", Sig4(h.connectionSpace)},
        {"created", date},
        {"platform", Sig4(h.platform)},
        {"flags", std::to_string(h.flags)},
        {"manufacturer", Sig4(h.manufacturer)},
        {"model", Sig4(h.model)},
        {"attributes", std::to_string(h.attributes)},
        {"rendering intent", std::to_string(h.renderingIntent) + " (" + IntentName(h.renderingIntent) + ")"},
        {"illuminant", illuminant},
        {"creator", Sig4(h.creator)},
        {"profile id", id},
    };
    if (json) {
        fprintf(out, "{\"file\": %s, \"bytes\": %zu, \"header\": {", Json(name).c_str(), bytes.size());
        bool first = true;
        for (const auto& [key, value] : fields) {
            fprintf(out, "%s%s: %s", first ? "" : ", ", Json(key).c_str(), Json(value).c_str());
            first = false;
        }
        fprintf(out, "}, \"tags\": [");
    } else {
        fprintf(out, "%s: ICC profile, %zu bytes\n", name.c_str(), bytes.size());
        for (const auto& [key, value] : fields) fprintf(out, "  %-17s %s\n", key, value.c_str());
        fprintf(out, "  %d tags:\n  %-6s %-6s %8s %8s  value\n", p.r.tagCount, "sig", "type", "offset", "size");
    }
    for (int32_t i = 0; i < p.r.tagCount; ++i) {
        const ICCTagEntry row = p.r.tagList[i];
        const uint32_t type = Vx_GetICCTagTypeSig(&p.r, row.signature);
        std::string problem;
        const std::string value = Decode(&p.r, row.signature, type, &problem);
        if (json) {
            fprintf(out, "%s{\"signature\": %s, \"type\": %s, \"offset\": %u, \"size\": %u, \"value\": %s%s}",
                    i ? ", " : "", Json(Sig4(row.signature)).c_str(), Json(Sig4(type)).c_str(), row.offset, row.size,
                    Json(value).c_str(), problem.empty() ? "" : (", \"error\": " + Json(problem)).c_str());
        } else {
            fprintf(out, "  %-6s %-6s %8u %8u  %s\n", Sig4(row.signature).c_str(), Sig4(type).c_str(), row.offset,
                    row.size, problem.empty() ? value.c_str() : ("unreadable: " + problem).c_str());
        }
    }
    if (json) fprintf(out, "]}\n");
}

}  // namespace ktcli
