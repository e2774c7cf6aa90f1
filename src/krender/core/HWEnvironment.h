#pragma once
#include <krender/Export.h>
#include <krender/platform/String.h>

#include <cstdint>

/// Process-wide settings of the renderer. The host sets them and its drawing code reads them. The library reads none: it
/// exports them so that both share one copy. Texts are empty and switches off until the host sets them.
class KRENDER_EXPORT HWEnvironment
{
public:
    static krString::CString enable_hwr_cg_programs;
    static krString::IString teka_path;
    static krString::CString env_desired_profile;
    static krString::CString enable_arbvp1;
    static krString::CString shaderFileName;
    static bool teka_batch_mode;
    static bool teka_enable_batched_hw_materials;
    static bool teka_enable_tsl_echo;
    static bool teka_disable_hwr_multisampling;
    static bool teka_block_allocate_strips;
    static bool teka_use_primitive_restart;
    static bool teka_use_draw_range_elements;
    static std::int32_t teka_max_vbo_data_size;
    static bool force_hwRenderer_supported;
    static bool enable_hwr_tsl_flag;
    static bool disable_hwr_shadow_texture_flag;
    static bool disable_hwr_point_smooth_flag;
    static bool disable_hwr_texture_shader_flag;
    /// A level, not a switch; 2 until the host sets it.
    static std::int32_t teka_enable_vbo;
};
