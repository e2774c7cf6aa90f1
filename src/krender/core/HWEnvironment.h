#pragma once
#include <krender/platform/String.h>

#include <cstdint>

/// Process-wide switches of the renderer. The host fills them in and its drawing code reads them; the library exports
/// them so that both share one copy, and reads none itself.
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
    /// A level and not a switch, 2 unless the host says otherwise.
    static std::int32_t teka_enable_vbo;
};
