#include "DsetDump.h"

#include "tFixed.h"

#include <QJN.h>

#include <cstdio>

namespace {

long fixedOf(const QJN::Value& v, double fallback)
{
    return tFixed::fromFloat(v.isDouble() ? v.asDouble() : fallback).raw();
}

struct tElementValues
{
    long x, y, z, rotation, scaleX, scaleY, regX, regY;
    int red, green, blue, alpha;
};

tElementValues elementValues(const QJN::Value& v)
{
    const QJN::Value position = v["Position"];
    const QJN::Value scale = v["Scale"];
    const QJN::Value reg = v["Reg"];
    const QJN::Value color = v["Color"];
    tElementValues e;
    e.x = fixedOf(position[0u], 0);
    e.y = fixedOf(position[1u], 0);
    e.z = fixedOf(position[2u], 0);
    e.rotation = fixedOf(v["Rotation"], 0);
    e.scaleX = fixedOf(scale[0u], 1.0);
    e.scaleY = fixedOf(scale[1u], 1.0);
    e.regX = fixedOf(reg[0u], 0);
    e.regY = fixedOf(reg[1u], 0);
    e.red = color[0u].isInt() ? color[0u].asInt() : 255;
    e.green = color[1u].isInt() ? color[1u].asInt() : 255;
    e.blue = color[2u].isInt() ? color[2u].asInt() : 255;
    e.alpha = color[3u].isInt() ? color[3u].asInt() : 255;
    return e;
}

/// Prints the graphic-element fields of one element kind ("Actor", "Billboard", "AvatarPiece").
void printElement(const tElementValues& e, const char* prefix, const std::string& tabs, bool openColorClose)
{
    const char* t = tabs.c_str();
    printf("%s<%sPositionX> %ld </%sPositionX>\n", t, prefix, e.x, prefix);
    printf("%s<%sPositionY> %ld </%sPositionY>\n", t, prefix, e.y, prefix);
    printf("%s<%sPositionZ> %ld </%sPositionZ>\n", t, prefix, e.z, prefix);
    printf("%s<%sRotation> %ld </%sRotation>\n", t, prefix, e.rotation, prefix);
    printf("%s<%sScaleX> %ld </%sScaleX>\n", t, prefix, e.scaleX, prefix);
    printf("%s<%sScaleY> %ld </%sScaleY>\n", t, prefix, e.scaleY, prefix);
    printf("%s<%sRegX> %ld </%sRegX>\n", t, prefix, e.regX, prefix);
    printf("%s<%sRegY> %ld </%sRegY>\n", t, prefix, e.regY, prefix);
    printf("%s<%sColor>\n", t, prefix);
    printf("%s\t<%sColorRed> %d </%sColorRed>\n", t, prefix, e.red, prefix);
    printf("%s\t<%sColorGreen> %d </%sColorGreen>\n", t, prefix, e.green, prefix);
    printf("%s\t<%sColorBlue> %d </%sColorBlue>\n", t, prefix, e.blue, prefix);
    printf("%s\t<%sColorAlpha> %d </%sColorAlpha>\n", t, prefix, e.alpha, prefix);
    // The billboard's closing colour tag has always been written without its '<'.
    if (openColorClose)
        printf("%s/%sColor>\n", t, prefix);
    else
        printf("%s</%sColor>\n", t, prefix);
}

void printOperations(const QJN::Value& cel)
{
    printf("\t\t\t<ActorOperations>\n");
    const QJN::Value ops = cel["Operations"];
    for (unsigned int i = 0; i < ops.size(); ++i) {
        const QJN::Value op = ops[i];
        printf("\t\t\t\t<ActorOperationData>\n");
        printf("\t\t\t\t\t<OperationOpcode> %u </OperationOpcode>\n", op["Opcode"].asUInt());
        const QJN::Value arg = op["Oparg"];
        if (arg.isArray()) {
            printf("\t\t\t\t\t<OperationOpargString1> %s </OperationOpargString1>\n", arg[0u].asString().c_str());
            printf("\t\t\t\t\t<OperationOpargString2> %s </OperationOpargString2>\n", arg[1u].asString().c_str());
        } else {
            printf("\t\t\t\t\t<OperationOparg> %u </OperationOparg>\n", static_cast<unsigned int>(arg.asInt()) & 0xFFFF);
        }
        printf("\t\t\t\t</ActorOperationData>\n");
    }
    printf("\t\t\t</ActorOperations>\n");
}

void printChildren(const QJN::Value& cel)
{
    const QJN::Value children = cel["Children"];
    printf("\t\t\t<ActorBillboards>\n");
    for (unsigned int i = 0; i < children.size(); ++i) {
        const QJN::Value child = children[i];
        if (child["ElementType"].asInt() != 0)
            continue;
        printf("\t\t\t\t<ActorBillboardData>\n");
        printf("\t\t\t\t\t<BillboardID> %u </BillboardID>\n", child["ID"].asUInt());
        printf("\t\t\t\t\t<BillboardURL> %s </BillboardURL>\n", child["URL"].asString().c_str());
        printf("\t\t\t\t\t<ActorBillboardGraphicElementData>\n");
        printElement(elementValues(child), "Billboard", "\t\t\t\t\t\t", true);
        printf("\t\t\t\t\t</ActorBillboardGraphicElementData>\n");
        printf("\t\t\t\t</ActorBillboardData>\n");
    }
    printf("\t\t\t</ActorBillboards>\n");
    printf("\t\t\t<ActorAvatarPieces>\n");
    for (unsigned int i = 0; i < children.size(); ++i) {
        const QJN::Value child = children[i];
        const int type = child["ElementType"].asInt();
        if (type != 4 && type != 5)
            continue;
        printf("\t\t\t\t<ActorAvatarPieceData>\n");
        printf("\t\t\t\t\t<AvatarPieceID> %u </AvatarPieceID>\n", child["ID"].asUInt());
        printf("\t\t\t\t\t<AvatarPieceComponent> %s </AvatarPieceComponent>\n", child["Component"].asString().c_str());
        printf("\t\t\t\t\t<AvatarPieceVariation> %s </AvatarPieceVariation>\n", child["Variation"].asString().c_str());
        printf("\t\t\t\t\t<ActorAvatarPieceGraphicElementData>\n");
        printElement(elementValues(child), "AvatarPiece", "\t\t\t\t\t\t", false);
        printf("\t\t\t\t\t</ActorAvatarPieceGraphicElementData>\n");
        printf("\t\t\t\t</ActorAvatarPieceData>\n");
    }
    printf("\t\t\t</ActorAvatarPieces>\n");
}

} // namespace

void actorDsetDump(const Glib::ustring& path, QJN::CJSonFile& file)
{
    const QJN::Value& root = file.getRoot();
    printf("----- Start dataset file \"%s\" here -----\n", path.c_str());
    printf("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
    printf("<!DOCTYPE ActorData SYSTEM \"actor.dtd\">\n");
    printf("<ActorData>\n");
    printf("\t<contentVersion> 1.0 </contentVersion>\n");
    printf("\t<ActorGraphicElementData>\n");
    printElement(elementValues(root), "Actor", "\t\t", false);
    printf("\t</ActorGraphicElementData>\n");
    printf("\t<ActorSpriteCels>\n");
    const QJN::Value cels = root["Animation"];
    for (unsigned int i = 0; i < cels.size(); ++i) {
        const QJN::Value cel = cels[i];
        printf("\t\t<ActorSpriteCelData>\n");
        if (cel.isMember("Label"))
            printf("\t\t\t<SpriteCelLabel> %s </SpriteCelLabel>\n", cel["Label"].asString().c_str());
        printf("\t\t\t<SpriteCelID> %u </SpriteCelID>\n", cel["ID"].asUInt());
        printf("\t\t\t<SpriteCelDuration> %u </SpriteCelDuration>\n", cel["Duration"].asUInt());
        printOperations(cel);
        printChildren(cel);
        printf("\t\t</ActorSpriteCelData>\n");
    }
    printf("\t</ActorSpriteCels>\n");
    printf("</ActorData>\n");
    printf("----- End dataset file \"%s\" here -----\n", path.c_str());
}

void dsetDump(const Glib::ustring& path, QJN::CJSonFile& file)
{
    const QJN::Value& root = file.getRoot();
    printf("----- Start dataset file \"%s\" here -----\n", path.c_str());
    printf("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
    printf("<!DOCTYPE CostumeData SYSTEM \"costume.dtd\">\n");
    printf("<CostumeData>\n");
    printf("\t<CostumeLODList>\n");
    const QJN::Value lods = root["LODList"];
    for (unsigned int i = 0; i < lods.size(); ++i) {
        const QJN::Value lod = lods[i];
        printf("\t\t<LODValueData>\n");
        printf("\t\t\t<LODValueSize> %d </LODValueSize>\n", lod["Size"].asInt());
        printf("\t\t\t<LODValueComponentList>\n");
        const QJN::Value components = lod["ComponentList"];
        for (unsigned int c = 0; c < components.size(); ++c) {
            const QJN::Value component = components[c];
            printf("\t\t\t\t<ComponentData>\n");
            printf("\t\t\t\t\t<ComponentName> %s </ComponentName>\n", component["Name"].asString().c_str());
            printf("\t\t\t\t\t<ComponentVariations>\n");
            const QJN::Value variations = component["Variations"];
            for (unsigned int v = 0; v < variations.size(); ++v) {
                const QJN::Value var = variations[v];
                printf("\t\t\t\t\t\t<VariationData>\n");
                printf("\t\t\t\t\t\t\t<VariationName> %s </VariationName>\n", var["Name"].asString().c_str());
                printf("\t\t\t\t\t\t\t<VariationRectLeft> %ld </VariationRectLeft>\n", fixedOf(var["RectLeft"], 0));
                printf("\t\t\t\t\t\t\t<VariationRectTop> %ld </VariationRectTop>\n", fixedOf(var["RectTop"], 0));
                printf("\t\t\t\t\t\t\t<VariationRectRight> %ld </VariationRectRight>\n", fixedOf(var["RectRight"], 0));
                printf("\t\t\t\t\t\t\t<VariationRectBottom> %ld </VariationRectBottom>\n", fixedOf(var["RectBottom"], 0));
                printf("\t\t\t\t\t\t\t<VariationRegPointX> %ld </VariationRegPointX>\n", fixedOf(var["RegPointX"], 0));
                printf("\t\t\t\t\t\t\t<VariationRegPointY> %ld </VariationRegPointY>\n", fixedOf(var["RegPointY"], 0));
                printf("\t\t\t\t\t\t</VariationData>\n");
            }
            printf("\t\t\t\t\t</ComponentVariations>\n");
            printf("\t\t\t\t</ComponentData>\n");
        }
        printf("\t\t\t</LODValueComponentList>\n");
        printf("\t\t\t<LODValueTextureURI> %s </LODValueTextureURI>\n", lod["TextureURI"].asString().c_str());
        printf("\t\t</LODValueData>\n");
    }
    printf("\t</CostumeLODList>\n");
    printf("\t<CostumeAudioList>\n");
    const QJN::Value audio = root["AudioList"];
    for (unsigned int i = 0; i < audio.size(); ++i) {
        printf("\t\t<AudioData>\n");
        printf("\t\t\t<AudioName> %s </AudioName>\n", audio[i]["Name"].asString().c_str());
        printf("\t\t\t<AudioURI> %s </AudioURI>\n", audio[i]["URI"].asString().c_str());
        printf("\t\t</AudioData>\n");
    }
    printf("\t</CostumeAudioList>\n");
    printf("</CostumeData>\n");
    printf("----- End dataset file \"%s\" here -----\n", path.c_str());
}
