#include "host/rendercore/submit/maya_attributes.h"

#include <algorithm>
#include <array>

namespace {

struct FileAttribute
{
    const char* node; ///< null for every node
    const char* name; ///< the short name; long names that end like a file's need no entry
};

constexpr std::array FileAttributes {
    FileAttribute {nullptr, "ftn"},
    FileAttribute {"imagePlane", "imn"},
    FileAttribute {"AlembicNode", "fn"},
    FileAttribute {"AlembicNode", "fns"},
    FileAttribute {"AlembicNode", "abc_layerFiles"},
    FileAttribute {"ExocortexAlembicFile", "fn"},
    FileAttribute {"gpuCache", "cfn"},
    FileAttribute {"aiStandIn", "dso"},
    FileAttribute {"aiVolume", "fn"},
    FileAttribute {"aiImage", "fn"},
    FileAttribute {"aiPhotometricLight", "aifn"},
    FileAttribute {"mentalrayIblShape", "tx"},
    FileAttribute {"mip_binaryproxy", "obj"},
    FileAttribute {"VRayMesh", "fn"},
    FileAttribute {"VRayMesh", "fn2"},
    FileAttribute {"VRayPtex", "ptf"},
    FileAttribute {"VRayLightIESShape", "ief"},
    FileAttribute {"VRayVolumeGrid", "inp"},
    FileAttribute {"RedshiftProxyMesh", "fn"},
    FileAttribute {"RedshiftVolumeShape", "fn"},
    FileAttribute {"RedshiftNormalMap", "tex0"},
    FileAttribute {"RedshiftEnvironment", "tex0"},
    FileAttribute {"RedshiftEnvironment", "tex1"},
    FileAttribute {"RedshiftEnvironment", "tex2"},
    FileAttribute {"RedshiftEnvironment", "tex3"},
    FileAttribute {"RedshiftEnvironment", "tex4"},
    FileAttribute {"RedshiftDomeLight", "tex0"},
    FileAttribute {"RedshiftDomeLight", "tex1"},
    FileAttribute {"RedshiftSprite", "tex0"},
    FileAttribute {"RedshiftIESLight", "profile"},
    FileAttribute {"PxrDomeLight", "lightColorMap"},
    FileAttribute {"RenderManArchive", "filename"},
    FileAttribute {"xgmPalette", "xfn"},
    FileAttribute {"pgYetiMaya", "cfn"},
    FileAttribute {"mayaUsdProxyShape", "fp"},
    FileAttribute {"OpenVDBRead", "file"},
};

// The ends of long names, in lower case and without underscores and numbers.
constexpr std::array FileEndings {"filename", "filepath", "texturename", "texturefile", "texturepath",
    "imagename", "imagefile", "imagepath", "cachefile", "abcfile", "proxyfile", "archivefile", "iesfile",
    "vdbfile", "meshfile", "lutfile"};

// Attributes with these words name files that are written.
constexpr std::array OutputWords {"output", "export", "prefix", "render", "log", "write", "save"};

constexpr int LongestSuffix = 8;

QString Plain(const QString& attribute)
{
    QString plain = attribute.toLower();
    plain.remove(QLatin1Char('_'));
    while (!plain.isEmpty() && plain.at(plain.size() - 1).isDigit())
        plain.chop(1);
    return plain;
}

} // namespace

namespace MayaAttributes {

Kind KindOf(const QString& node, const QString& attribute)
{
    const bool isKnown
        = std::any_of(FileAttributes.begin(), FileAttributes.end(), [&](const FileAttribute& known) {
              return attribute == QLatin1String(known.name)
                  && (!known.node || node == QLatin1String(known.node));
          });
    if (isKnown)
        return Kind::File;
    const QString plain = Plain(attribute);
    const bool isNamedSo = std::any_of(FileEndings.begin(), FileEndings.end(),
        [&plain](const char* ending) { return plain.endsWith(QLatin1String(ending)); });
    const bool isOutput = std::any_of(OutputWords.begin(), OutputWords.end(),
        [&plain](const char* word) { return plain.contains(QLatin1String(word)); });
    return isNamedSo && !isOutput ? Kind::Possible : Kind::Other;
}

bool IsFileName(const QString& value)
{
    const int dot = value.lastIndexOf(QLatin1Char('.'));
    const int length = value.size() - dot - 1;
    return dot > 0 && length > 0 && length <= LongestSuffix && !value.startsWith(QLatin1String("<MAYA_"))
        && std::all_of(
            value.cbegin() + dot + 1, value.cend(), [](QChar part) { return part.isLetterOrNumber(); })
        && std::any_of(value.cbegin() + dot + 1, value.cend(), [](QChar part) { return part.isLetter(); });
}

} // namespace MayaAttributes
