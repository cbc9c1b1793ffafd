#include "host/registration.h"

#include "filters/box_blur.h"
#include "filters/convolution.h"
#include "filters/diffuse.h"
#include "filters/dither.h"
#include "filters/engrave.h"
#include "filters/fractional_blur.h"
#include "filters/neon.h"
#include "filters/oil.h"
#include "filters/stamp.h"
#include "filters/tone.h"
#include "filters/unsharp.h"
#include "geometry/copy.h"
#include "geometry/fill.h"
#include "geometry/mirror.h"
#include "geometry/quarter_turn.h"
#include "geometry/rotate.h"
#include "geometry/scale.h"
#include "geometry/scale_fast.h"
#include "geometry/views.h"
#include "host/classes.h"
#include "host/constants.h"
#include "host/declaration.h"
#include "host/entry_points.h"
#include "host/guarded.h"
#include "image/factory.h"
#include "image/format.h"
#include "image/lifecycle.h"
#include "image/mapped_store.h"
#include "interop/drawing.h"
#include "interop/import_export.h"
#include "rows/conversion.h"
#include "rows/row_access.h"

#include <cstddef>

namespace kzb {

namespace {

// Registration flags as the host knows them; items that involve host pictures carry fewer.
constexpr word method_flags = 4;
constexpr word picture_method_flags = 0;
constexpr word property_flags = 6;
constexpr word picture_property_flags = 2;
constexpr word class_flags = 4;

constexpr KZBFunction read_only = nullptr;

// A row of the method table: the declaration is held against the functions while compiling.
template <Text declaration, auto function, auto setter = nullptr> MethodDefinition method(word flags = method_flags) {
    constexpr Signature declared = DeclarationReader(declaration.characters).read();
    static_assert(signature_of(function) == method_signature(declared), "the function does not fit its declaration");
    if constexpr (!std::is_null_pointer_v<decltype(setter)>)
        static_assert(signature_of(setter) == setter_signature(declared), "the setter does not fit its declaration");
    return {guarded<function>(), guarded<setter>(), declaration.characters, flags};
}

template <Text declaration, auto function> MethodDefinition picture_method() {
    return method<declaration, function>(picture_method_flags);
}

template <Text declaration, auto function> MethodDefinition shared_method(word flags) {
    static_assert(signature_of(function) == DeclarationReader(declaration.characters).read(),
                  "the function does not fit its declaration");
    return {guarded<function>(), nullptr, declaration.characters, flags};
}

PropertyDefinition property(const char *name, const char *type, word flags, KZBFunction getter, KZBFunction setter,
                            size_t parameter) {
    return {nullptr, name, type, flags, getter, setter, static_cast<word>(parameter), 0, nullptr};
}

// A record field that the host reads, and where `setter` says so writes, by itself.
#define KZB_FIELD(name, type, flags, setter, byte)                                                                     \
    property(#name, type, flags, KZB_DIRECT, setter, offsetof(ImageRecord, name) + (byte))
#define KZB_INTEGER_FIELD(name) KZB_FIELD(name, "Integer", property_flags, read_only, 0)
#define KZB_FLAG_FIELD(name)                                                                                           \
    KZB_FIELD(name, "Boolean", property_flags, read_only, sizeof ImageRecord::name == 1 ? 0 : flag_byte)

PropertyDefinition properties[] = {
    KZB_FIELD(YieldTicks, "Integer", property_flags, KZB_DIRECT, 0),
    KZB_INTEGER_FIELD(RedOffset),
    KZB_INTEGER_FIELD(GreenOffset),
    KZB_INTEGER_FIELD(BlueOffset),
    KZB_INTEGER_FIELD(GrayOffset),
    KZB_INTEGER_FIELD(AlphaOffset),
    KZB_INTEGER_FIELD(Width),
    KZB_INTEGER_FIELD(Height),
    KZB_INTEGER_FIELD(PixelSize),
    KZB_INTEGER_FIELD(RowSize),
    KZB_INTEGER_FIELD(ImageFormat),
    property("ImageFormatString", "String", property_flags, guarded<image_format_string>(), read_only, 0),
    KZB_FIELD(MappingBlockSize, "Integer", property_flags, guarded<set_mapping_block_size>(), 0),
    KZB_INTEGER_FIELD(RowOffset),
    KZB_FIELD(DebugPictureEnabled, "Boolean", picture_property_flags, KZB_DIRECT, 0),
    property("DebugPicture", "Picture", picture_property_flags, guarded<debug_picture>(), read_only, 0),
    KZB_FLAG_FIELD(IsGray),
    KZB_FLAG_FIELD(IsRGB),
    KZB_FLAG_FIELD(HasGreen),
    KZB_FLAG_FIELD(HasRed),
    KZB_FLAG_FIELD(HasBlue),
    KZB_FLAG_FIELD(HasGray),
    KZB_FLAG_FIELD(HasAlpha),
    KZB_FLAG_FIELD(Valid),
    KZB_FLAG_FIELD(IsMapping),
    KZB_FIELD(Parent, "PictureKZB", property_flags, read_only, 0),
    KZB_FIELD(Factory, "PictureFactoryKZB", property_flags, KZB_DIRECT, 0),
    KZB_FIELD(Target, "Picture", picture_property_flags, read_only, 0),
    property("Memory", "Memoryblock", property_flags, guarded<image_memory>(), read_only, 0),
    KZB_FIELD(MemoryTarget, "Memoryblock", property_flags, read_only, 0),
    property("TotalSize", "Int64", property_flags, guarded<image_total_size>(), read_only, 0),
};
static_assert(std::size(properties) == 31);

#undef KZB_FLAG_FIELD
#undef KZB_INTEGER_FIELD
#undef KZB_FIELD

MethodDefinition methods[] = {
    // Making and closing images
    method<"Constructor(width as integer, height as integer, ImageFormat as integer)", construct_in_memory>(),
    method<"Constructor(Buf as MemoryBlock, width as integer, height as integer, ImageFormat as integer, "
           "RowSize as integer)",
           construct_over_block>(),
    method<"Close", close_image>(),
    method<"Constructor(width as integer, height as integer, ImageFormat as integer, BlockSize as integer, "
           "FilePath as folderitem)",
           construct_file_backed>(),
    method<"CreatePictureKZB(width as integer, height as integer, ImageFormat as integer) as PictureKZB",
           create_picture>(),

    // Rows
    method<"RawRow(index as integer) as memoryblock", raw_row>(),
    method<"Row(index as integer) as memoryblock", row, set_row>(),

    // Rows in any layout
    method<"RowInFormat(index as integer, ImageFormat as integer) as memoryblock", row_in_format, set_row_in_format>(),
    method<"RowInFormat(index as integer, ImageFormat as integer, InvertAlpha as boolean) as memoryblock",
           row_in_format_inverting, set_row_in_format_inverting>(),
    method<"RowStringInFormat(index as integer, ImageFormat as integer) as string", row_string_in_format,
           set_row_string_in_format>(),
    method<"DataStringInFormat(ImageFormat as integer) as string", data_string_in_format, set_data_string_in_format>(),

    // Host pictures
    picture_method<"Constructor(pic as picture, UseAlpha as boolean=false)", construct_on_picture>(),
    picture_method<"CopyPictureWithMask(x as integer, y as integer, w as integer, h as integer) as picture",
                   copy_picture_with_mask_rectangle>(),
    picture_method<"CopyPicture(x as integer, y as integer, w as integer, h as integer) as picture",
                   copy_picture_rectangle>(),
    picture_method<"CopyMask(x as integer, y as integer, w as integer, h as integer) as picture",
                   copy_mask_rectangle>(),
    picture_method<"CopyPictureWithMask as picture", copy_picture_with_mask>(),
    picture_method<"CopyPicture as picture", copy_picture>(),
    picture_method<"CopyMask as picture", copy_mask>(),

    // Host pictures drawn into channels
    picture_method<"DrawPictureRedToGrayChannel(pic as picture, DestX as integer, DestY as integer, "
                   "DestWidth as integer, DestHeight as integer, SourceX as integer, SourceY as integer)",
                   draw_picture_red_to_gray_from>(),
    picture_method<"DrawPictureRedToGrayChannel(pic as picture, DestX as integer, DestY as integer, "
                   "DestWidth as integer, DestHeight as integer)",
                   draw_picture_red_to_gray>(),
    picture_method<"DrawPictureGreenToGrayChannel(pic as picture, DestX as integer, DestY as integer, "
                   "DestWidth as integer, DestHeight as integer, SourceX as integer, SourceY as integer)",
                   draw_picture_green_to_gray_from>(),
    picture_method<"DrawPictureGreenToGrayChannel(pic as picture, DestX as integer, DestY as integer, "
                   "DestWidth as integer, DestHeight as integer)",
                   draw_picture_green_to_gray>(),
    picture_method<"DrawPictureBlueToGrayChannel(pic as picture, DestX as integer, DestY as integer, "
                   "DestWidth as integer, DestHeight as integer, SourceX as integer, SourceY as integer)",
                   draw_picture_blue_to_gray_from>(),
    picture_method<"DrawPictureBlueToGrayChannel(pic as picture, DestX as integer, DestY as integer, "
                   "DestWidth as integer, DestHeight as integer)",
                   draw_picture_blue_to_gray>(),
    picture_method<"DrawPictureRGB(pic as picture, DestX as integer, DestY as integer, DestWidth as integer, "
                   "DestHeight as integer)",
                   draw_picture_rgb>(),
    picture_method<"DrawPictureRGB(pic as picture, DestX as integer, DestY as integer, DestWidth as integer, "
                   "DestHeight as integer, SourceX as integer, SourceY as integer)",
                   draw_picture_rgb_from>(),

    // Fill, clear and invert
    method<"Invert", invert>(),
    method<"Invert(x as integer, y as integer, w as integer, h as integer)", invert_rectangle>(),
    method<"ClearRect", clear>(),
    method<"ClearRect(x as integer, y as integer, width as integer, height as integer)", clear_rectangle>(),
    method<"FillRect(value as integer)", fill>(),
    method<"FillRect(x as integer, y as integer, width as integer, height as integer, value as integer)",
           fill_rectangle>(),
    method<"FillRectRGB(red as integer, green as integer, blue as integer)", fill_rgb>(),
    method<"FillRectRGB(red as integer, green as integer, blue as integer, alpha as integer)", fill_rgba>(),
    method<"FillRectRGB(x as integer, y as integer, width as integer, height as integer, red as integer, "
           "green as integer, blue as integer)",
           fill_rectangle_rgb>(),
    method<"FillRectRGB(x as integer, y as integer, width as integer, height as integer, red as integer, "
           "green as integer, blue as integer, alpha as integer)",
           fill_rectangle_rgba>(),
    method<"FillRectRGB(FillColor as color)", fill_color>(),
    method<"FillRectRGB(FillColor as color, alpha as integer)", fill_color_with_alpha>(),
    method<"FillRectRGB(x as integer, y as integer, width as integer, height as integer, FillColor as color)",
           fill_rectangle_color>(),
    method<"FillRectRGB(x as integer, y as integer, width as integer, height as integer, FillColor as color, "
           "alpha as integer)",
           fill_rectangle_color_with_alpha>(),

    // Copies and views
    method<"AlphaChannel as PictureKZB", alpha_channel>(),
    method<"RedChannel as PictureKZB", red_channel>(),
    method<"GreenChannel as PictureKZB", green_channel>(),
    method<"BlueChannel as PictureKZB", blue_channel>(),
    method<"GrayChannel as PictureKZB", gray_channel>(),
    method<"RGBChannels as PictureKZB", rgb_channels>(),
    method<"Clone as PictureKZB", clone>(),
    method<"CopyPixels(source as PictureKZB, DestX as integer, DestY as integer, DestWidth as integer, "
           "DestHeight as integer, SourceX as integer, SourceY as integer)",
           copy_pixels_rectangle>(),
    method<"CopyPixels(source as PictureKZB, DestX as integer, DestY as integer, DestWidth as integer, "
           "DestHeight as integer)",
           copy_pixels_from_corner>(),
    method<"CopyPixels(source as PictureKZB)", copy_pixels>(),
    method<"ClipImage(x as integer, y as integer, width as integer, height as integer) as PictureKZB", clip_image>(),

    // Mirrors and turns
    method<"HMirror", h_mirror>(),
    method<"VMirror", v_mirror>(),
    method<"Rotate180", rotate_180_in_place>(),
    method<"Rotate90slow(dest as PictureKZB=nil) as PictureKZB", rotate_90_slow>(),
    method<"Rotate180(dest as PictureKZB=nil) as PictureKZB", rotate_180>(),
    method<"Rotate270slow(dest as PictureKZB=nil) as PictureKZB", rotate_270_slow>(),
    method<"Rotate90(dest as PictureKZB=nil) as PictureKZB", rotate_90>(),
    method<"Rotate270(dest as PictureKZB=nil) as PictureKZB", rotate_270>(),

    // Any angle
    method<"Rotate(angle as double, Red as integer, Green as integer, Blue as integer, Alpha as integer, "
           "Gray as integer) as PictureKZB",
           rotate>(),

    // Scaling
    method<"Scale(source as PictureKZB, temp as PictureKZB, mode as integer, width as integer, height as integer) as "
           "boolean",
           scale>(),
    method<"ScaleFast(source as PictureKZB, width as integer, height as integer) as boolean", scale_fast>(),

    // Convolution
    method<"ApplyMatrix(dest as PictureKZB, matrix() as integer) as PictureKZB", apply_matrix>(),
    method<"ApplyMatrix(dest as PictureKZB, matrix() as integer, delta as integer) as PictureKZB",
           apply_matrix_delta>(),
    method<"ApplyMatrix(dest as PictureKZB, matrix() as integer, delta as integer, ScaleFactor as double) as "
           "PictureKZB",
           apply_matrix_delta_scale>(),

    // Tone
    method<"SolarizeFilter(dest as PictureKZB) as PictureKZB", solarize_filter>(),
    method<"GammaFilter(dest as PictureKZB, redGamma as double, greenGamma as double, blueGamma as double) as "
           "PictureKZB",
           gamma_filter_rgb>(),
    method<"GammaFilter(dest as PictureKZB, redGamma as double, greenGamma as double, blueGamma as double, "
           "alphaGamma as double) as PictureKZB",
           gamma_filter_rgba>(),
    method<"GammaFilter(dest as PictureKZB, gamma as double) as PictureKZB", gamma_filter>(),
    method<"GammaFilter(dest as PictureKZB, gamma as double, alphaGamma as double) as PictureKZB",
           gamma_filter_with_alpha>(),
    method<"GainFilter(dest as PictureKZB, gain as double, bias as double) as PictureKZB", gain_filter>(),
    method<"TransferFilter(dest as PictureKZB, red() as integer, green() as integer, blue() as integer) as PictureKZB",
           transfer_filter_rgb>(),
    method<"TransferFilter(dest as PictureKZB, red() as integer, green() as integer, blue() as integer, "
           "alpha() as integer) as PictureKZB",
           transfer_filter_rgba>(),
    method<"TransferFilter(dest as PictureKZB, gray() as integer) as PictureKZB", transfer_filter_gray>(),
    method<"TransferFilter(dest as PictureKZB, gray() as integer, alpha() as integer) as PictureKZB",
           transfer_filter_gray_alpha>(),
    method<"AutoLevel as boolean", auto_level>(),
    method<"AutoLevel(x as integer, y as integer, w as integer, h as integer) as boolean", auto_level_rectangle>(),

    // Dithering
    method<"DitherFilter(dest as PictureKZB, matrix as integer, levels as integer) as PictureKZB", dither_filter>(),

    // Effects
    method<"OilFilter(dest as PictureKZB, levels as integer, range as integer) as PictureKZB", oil_filter>(),
    method<"DiffuseFilter(dest as PictureKZB, level as integer) as PictureKZB", diffuse_filter>(),
    method<"EngraveFilter(dest as PictureKZB, level as integer) as PictureKZB", engrave_filter>(),
    method<"NeonFilter(dest as PictureKZB) as PictureKZB", neon_filter>(),
    method<"StampFilter(dest as PictureKZB, radius as double, threshold as double, softness as double, "
           "Black as Color, White as Color) as PictureKZB",
           stamp_filter>(),

    // Blur and sharpen
    method<"BoxBlurFilter(dest as PictureKZB, Radius as double) as PictureKZB", box_blur_filter>(),
    method<"BoxBlurFilter(dest as PictureKZB, Radius as double, Iterations as integer) as PictureKZB",
           box_blur_filter_repeated>(),
    method<"BoxBlurFractionalFilter(dest as PictureKZB, Radius as double) as PictureKZB", box_blur_fractional_filter>(),
    method<"UnsharpFilter(origpixels as PictureKZB, Amount as double, Threshold as integer) as boolean",
           unsharp_filter>(),
};

MethodDefinition shared_methods[] = {
    shared_method<"CreatePictureKZB(width as integer, height as integer, theImageFormat as integer) as PictureKZB",
                  create_picture_shared>(method_flags),
};

MethodDefinition factory_shared_methods[] = {
    shared_method<"SetFactory(factory as PictureFactoryKZB)", set_factory>(0),
};

void destroy_image(Object image) { close_image(reinterpret_cast<ImageObject>(image)); }

} // namespace

int32_t register_classes() {
    picture_class.version = KZB_INTERFACE_VERSION;
    picture_class.name = "PictureKZB";
    picture_class.instance_data_size = sizeof(ImageRecord);
    picture_class.destructor = &Guarded<destroy_image>::call;
    picture_class.properties = properties;
    picture_class.property_count = std::size(properties);
    picture_class.methods = methods;
    picture_class.method_count = std::size(methods);
    picture_class.constants = picture_constants().data();
    picture_class.constant_count = static_cast<word>(picture_constants().size());
    picture_class.flags = class_flags;
    picture_class.shared_methods = shared_methods;
    picture_class.shared_method_count = std::size(shared_methods);

    picture_factory_class.version = KZB_INTERFACE_VERSION;
    picture_factory_class.name = "PictureFactoryKZB";
    picture_factory_class.events = &new_picture_event;
    picture_factory_class.event_count = 1;
    picture_factory_class.flags = class_flags;
    picture_factory_class.shared_methods = factory_shared_methods;
    picture_factory_class.shared_method_count = std::size(factory_shared_methods);

    PluginRegisterClass(&picture_class);
    return static_cast<int32_t>(PluginRegisterClass(&picture_factory_class));
}

} // namespace kzb
