#pragma once

namespace vxr {

// Names of elements and attributes as documents spell them.
inline constexpr const char* kElementName_LineEnd = "line-end";
inline constexpr const char* kElementName_GradientStop = "gradient-stop";
inline constexpr const char* kElementName_Gradient = "gradient";
inline constexpr const char* kElementName_AngleGradient = "angle-gradient";
inline constexpr const char* kElementName_TransformGradient = "transform-gradient";
inline constexpr const char* kElementName_StrokePattern = "stroke-pattern";
inline constexpr const char* kElementName_Stroke = "stroke";
inline constexpr const char* kElementName_Shadow = "shadow";
inline constexpr const char* kElementName_FilteredImage = "filtered-image";
inline constexpr const char* kElementName_FilteredImageBinary = "filtered";
inline constexpr const char* kElementName_UnfilteredImageBinary = "unfiltered";
inline constexpr const char* kElementName_LeveledImageBinary = "leveled";
inline constexpr const char* kElementName_Effects = "effects";
inline constexpr const char* kElementName_CIFilter = "core-image-filter";
inline constexpr const char* kElementName_FilterProperties = "filter-properties";
inline constexpr const char* kElementName_FilterData = "nscoded-filter";
inline constexpr const char* kElementName_Extent = "extent";
inline constexpr const char* kElementName_ManipulatedStroke = "manipulated-stroke";
inline constexpr const char* kElementName_OffsetOddWidth = "offset-odd-width";
inline constexpr const char* kElementName_OutsetPath = "outset-path";
inline constexpr const char* kElementName_OvershootJoins = "overshoot-joins";
inline constexpr const char* kElementName_RoundedPath = "rounded-path";
inline constexpr const char* kElementName_VaryWidth = "vary-width";
inline constexpr const char* kElementName_WobblyPath = "wobbly-path";
inline constexpr const char* kElementName_OutsetStroker = "outset-stroker";
inline constexpr const char* kElementName_PatternedStroker = "patterned-stroker";
inline constexpr const char* kElementName_Color = "color";
inline constexpr const char* kElementName_Path = "path";
inline constexpr const char* kElementName_Reflection = "reflection";
inline constexpr const char* kElementName_ImageBinary = "image-binary";
inline constexpr const char* kElementName_ImageFill = "image-fill";
inline constexpr const char* kElementName_Shape = "shape";
inline constexpr const char* kElementName_Star = "star";
inline constexpr const char* kElementName_RegularPolygon = "regular-polygon";
inline constexpr const char* kElementName_Line = "line";
inline constexpr const char* kElementName_Image = "image";
inline constexpr const char* kElementName_Group = "group";
inline constexpr const char* kElementName_ReflectionRenderable = "reflection-renderable";
inline constexpr const char* kAttributeName_Enabled = "enabled";
inline constexpr const char* kAttributeName_IsLeveled = "is-leveled";

} // namespace vxr
