#include <krender/core/HWEnvironment.h>

#include <krender/platform/String.h>

// Initialised early, so that the initialisers of other files can use the strings.
[[gnu::init_priority(200)]] krString::CString HWEnvironment::enable_hwr_cg_programs;
[[gnu::init_priority(200)]] krString::IString HWEnvironment::teka_path;
[[gnu::init_priority(200)]] krString::CString HWEnvironment::env_desired_profile;
[[gnu::init_priority(200)]] krString::CString HWEnvironment::enable_arbvp1;
[[gnu::init_priority(200)]] krString::CString HWEnvironment::shaderFileName("");
constinit bool HWEnvironment::teka_batch_mode = false;
constinit bool HWEnvironment::teka_enable_batched_hw_materials = false;
constinit bool HWEnvironment::teka_enable_tsl_echo = false;
constinit bool HWEnvironment::teka_disable_hwr_multisampling = false;
constinit bool HWEnvironment::teka_block_allocate_strips = false;
constinit bool HWEnvironment::teka_use_primitive_restart = false;
constinit bool HWEnvironment::teka_use_draw_range_elements = false;
constinit std::int32_t HWEnvironment::teka_max_vbo_data_size = 0;
constinit bool HWEnvironment::force_hwRenderer_supported = false;
constinit bool HWEnvironment::enable_hwr_tsl_flag = false;
constinit bool HWEnvironment::disable_hwr_shadow_texture_flag = false;
constinit bool HWEnvironment::disable_hwr_point_smooth_flag = false;
constinit bool HWEnvironment::disable_hwr_texture_shader_flag = false;
constinit std::int32_t HWEnvironment::teka_enable_vbo = 2;
