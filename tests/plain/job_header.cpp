#include "tests/plain/job_header.h"

#include "platform/windows.h"

namespace orvex::plain {

namespace {

std::string Line(const char* variable, int64_t value) {
    return "@PJL SET " + std::string(variable) + "=" + std::to_string(value) + "\n";
}

}  // namespace

std::string JobHeader(const DeviceMode& mode, const HeaderFacts& facts) {
    const PrivateDevMode& settings = mode.priv;
    std::string header = Line("COPIES", mode.pub.dmCopies) + Line("COLLATE", mode.pub.dmCollate) +
                         Line("ORIGX", facts.widthPx) + Line("ORIGY", facts.heightPx) +
                         Line("JOBCAPTURE", settings.jobCapture) + Line("NOPRINT", settings.noPrint) +
                         Line("ALIGN", settings.alignment) + Line("COLORMODE", settings.colorMode) +
                         Line("OVERSPRAY", settings.overspray) + Line("FULLWIDTH", settings.kws_fullwidth) +
                         Line("PURGEBAR", settings.purgeBar) + Line("PURGEDOTS", settings.purgeDots) +
                         Line("PURGEGAP", settings.purgeGap) + Line("PURGEFREQ", settings.purgeFreq) +
                         Line("KWS", settings.kws) + Line("STITCHED", settings.stitched) +
                         Line("PHOFFSET", settings.phHOffset) + Line("TOFOFFSET", settings.phVOffset);
    if (facts.showsChunks)
        header += Line("CHUNKPAGES", settings.chunkActive != 0 ? settings.chunksize : 10000);
    header += Line("HPRES", facts.resolutionCode);
    header += "@PJL JOB NAME=\"" + facts.jobName + "\"\n";
    header += "@PJL SET PROFILE=\"" + facts.profileName + "\"\n";
    if (facts.thumbnail) header += "@PJL SET QRV_THUMBNAIL=\"" + *facts.thumbnail + "\"\n";
    return header;
}

std::string JobName(WideView documentName) {
    constexpr size_t kMost = 511;
    std::string name;
    for (size_t i = 0; i < documentName.size();) {
        const bool pair = i + 1 < documentName.size() && (documentName[i] & 0xFC00) == 0xD800 &&
                          (documentName[i + 1] & 0xFC00) == 0xDC00;
        const int units = pair ? 2 : 1;
        char narrow[8];
        const int bytes = WideCharToMultiByte(CP_ACP, 0, documentName.data() + i, units, narrow,
                                              sizeof narrow, nullptr, nullptr);
        if (name.size() + static_cast<size_t>(bytes) > kMost) break;
        name.append(narrow, static_cast<size_t>(bytes));
        i += static_cast<size_t>(units);
    }
    return name;
}

}  // namespace orvex::plain
