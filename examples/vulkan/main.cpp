// Draws materials with Vulkan, without a window: one picture a material.
// usage: vulkan-host LIGHTS.krs FOLDER MATERIAL.krs...
#include "../common/Sample.h"

#include <krender-targets/SpirvProgram.h>

#include <vulkan/vulkan_raii.hpp>

#include <array>
#include <cstring>
#include <exception>
#include <iostream>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

constexpr vk::Format kColors = vk::Format::eR8G8B8A8Unorm;
constexpr vk::Format kDepths = vk::Format::eD32Sfloat;
constexpr vk::Extent2D kExtent{sample::kSize, sample::kSize};

vk::raii::Instance makeInstance(const vk::raii::Context& context)
{
    const vk::ApplicationInfo application("vulkan-host", 1, nullptr, 0, VK_API_VERSION_1_1);
    return {context, vk::InstanceCreateInfo({}, &application)};
}

vk::raii::PhysicalDevice firstDevice(const vk::raii::Instance& instance)
{
    vk::raii::PhysicalDevices devices(instance);
    return std::move(devices.at(0));
}

vk::raii::Device makeDevice(const vk::raii::PhysicalDevice& physical, std::uint32_t family)
{
    const float priority = 1;
    const vk::DeviceQueueCreateInfo queue({}, family, 1, &priority);
    return {physical, vk::DeviceCreateInfo({}, queue)};
}

/// Memory that something of those needs can live in.
vk::raii::DeviceMemory allocate(const vk::raii::PhysicalDevice& physical, const vk::raii::Device& device,
                                const vk::MemoryRequirements& needs, vk::MemoryPropertyFlags wanted)
{
    const vk::PhysicalDeviceMemoryProperties has = physical.getMemoryProperties();
    for (std::uint32_t type = 0; type < has.memoryTypeCount; ++type)
        if ((needs.memoryTypeBits >> type & 1u) != 0 && (has.memoryTypes[type].propertyFlags & wanted) == wanted)
            return {device, vk::MemoryAllocateInfo(needs.size, type)};
    throw std::runtime_error("the Vulkan device lacks a kind of memory");
}

/// A buffer that the host can write and read.
struct Buffer
{
    vk::raii::Buffer buffer{nullptr};
    vk::raii::DeviceMemory memory{nullptr};
};

struct Image
{
    vk::raii::Image image{nullptr};
    vk::raii::DeviceMemory memory{nullptr};
    vk::raii::ImageView view{nullptr};
};

/// The first device that there is.
class Device
{
public:
    [[nodiscard]] const vk::raii::Device& get() const noexcept { return fDevice; }

    [[nodiscard]] Buffer makeBuffer(vk::BufferUsageFlags usage, std::span<const std::byte> bytes) const
    {
        Buffer made;
        made.buffer = vk::raii::Buffer(fDevice, vk::BufferCreateInfo({}, bytes.size(), usage));
        made.memory = allocate(fPhysical, fDevice, made.buffer.getMemoryRequirements(),
                               vk::MemoryPropertyFlagBits::eHostVisible | vk::MemoryPropertyFlagBits::eHostCoherent);
        made.buffer.bindMemory(*made.memory, 0);
        std::memcpy(made.memory.mapMemory(0, VK_WHOLE_SIZE), bytes.data(), bytes.size());
        made.memory.unmapMemory();
        return made;
    }

    [[nodiscard]] Image makeImage(const vk::ImageCreateInfo& info, vk::ImageViewType kind) const
    {
        const auto aspect = info.format == kDepths ? vk::ImageAspectFlagBits::eDepth : vk::ImageAspectFlagBits::eColor;
        Image made;
        made.image = vk::raii::Image(fDevice, info);
        made.memory =
            allocate(fPhysical, fDevice, made.image.getMemoryRequirements(), vk::MemoryPropertyFlagBits::eDeviceLocal);
        made.image.bindMemory(*made.memory, 0);
        made.view = vk::raii::ImageView(
            fDevice, vk::ImageViewCreateInfo({}, *made.image, kind, info.format, {},
                                             vk::ImageSubresourceRange(aspect, 0, 1, 0, info.arrayLayers)));
        return made;
    }

    /// Records commands and waits until they are done.
    template <class Record>
    void run(const Record& record) const
    {
        const vk::raii::CommandBuffers buffers(
            fDevice, vk::CommandBufferAllocateInfo(*fPool, vk::CommandBufferLevel::ePrimary, 1));
        const vk::raii::CommandBuffer& commands = buffers.front();
        commands.begin(vk::CommandBufferBeginInfo());
        record(commands);
        commands.end();
        fQueue.submit(vk::SubmitInfo({}, {}, *commands));
        fQueue.waitIdle();
    }

private:
    [[nodiscard]] std::uint32_t findFamily() const
    {
        const auto families = fPhysical.getQueueFamilyProperties();
        for (std::uint32_t i = 0; i < families.size(); ++i)
            if (families[i].queueFlags & vk::QueueFlagBits::eGraphics)
                return i;
        throw std::runtime_error("the Vulkan device cannot draw");
    }

    vk::raii::Context fContext;
    vk::raii::Instance fInstance = makeInstance(fContext);
    vk::raii::PhysicalDevice fPhysical = firstDevice(fInstance);
    std::uint32_t fFamily = findFamily();
    vk::raii::Device fDevice = makeDevice(fPhysical, fFamily);
    vk::raii::Queue fQueue{fDevice, fFamily, 0};
    vk::raii::CommandPool fPool{fDevice, vk::CommandPoolCreateInfo({}, fFamily)};
};

void moveImage(const vk::raii::CommandBuffer& commands, const vk::Image& image, vk::ImageAspectFlags aspect,
               vk::ImageLayout from, vk::ImageLayout to)
{
    const bool isNew = from == vk::ImageLayout::eUndefined;
    const auto access = vk::AccessFlagBits::eTransferWrite;
    commands.pipelineBarrier(
        vk::PipelineStageFlagBits::eAllCommands, vk::PipelineStageFlagBits::eAllCommands, {}, {}, {},
        vk::ImageMemoryBarrier(isNew ? vk::AccessFlags() : access, isNew ? access : vk::AccessFlagBits::eShaderRead,
                               from, to, VK_QUEUE_FAMILY_IGNORED, VK_QUEUE_FAMILY_IGNORED, image,
                               {aspect, 0, 1, 0, VK_REMAINING_ARRAY_LAYERS}));
}

struct Texture
{
    Image image;
    vk::raii::Sampler sampler{nullptr};
};

/// The picture that the examples show for every sampler; for a shadow map, depths of one half.
Texture makeTexture(const Device& device, DataType type)
{
    const bool isShadow = type == kSampler1DShadow || type == kSampler2DShadow;
    const bool isLine = type == kSampler1D || type == kSampler1DShadow;
    const bool isVolume = type == kSampler3D;
    const bool isCube = type == kSamplerCube;
    constexpr std::uint32_t kSide = sample::kPictureSide;
    vk::ImageCreateInfo info;
    info.flags = isCube ? vk::ImageCreateFlagBits::eCubeCompatible : vk::ImageCreateFlags();
    info.imageType = isLine ? vk::ImageType::e1D : isVolume ? vk::ImageType::e3D : vk::ImageType::e2D;
    info.format = isShadow ? kDepths : kColors;
    info.extent = vk::Extent3D(kSide, isLine ? 1 : kSide, isVolume ? kSide : 1);
    info.mipLevels = 1;
    info.arrayLayers = isCube ? 6 : 1;
    info.usage = vk::ImageUsageFlagBits::eSampled | vk::ImageUsageFlagBits::eTransferDst;
    Texture texture;
    texture.image = device.makeImage(info, isLine     ? vk::ImageViewType::e1D
                                           : isVolume ? vk::ImageViewType::e3D
                                           : isCube   ? vk::ImageViewType::eCube
                                                      : vk::ImageViewType::e2D);
    const vk::Image image = *texture.image.image;

    const std::vector<std::uint8_t> picture = sample::makePicture();
    std::vector<std::uint8_t> pixels;
    for (std::uint32_t i = 0; i < info.extent.depth * info.arrayLayers; ++i)
        pixels.insert(pixels.end(), picture.begin(), picture.end());
    const Buffer staging = device.makeBuffer(vk::BufferUsageFlagBits::eTransferSrc, std::as_bytes(std::span(pixels)));
    constexpr auto kFilled = vk::ImageLayout::eTransferDstOptimal;
    const auto aspect = isShadow ? vk::ImageAspectFlagBits::eDepth : vk::ImageAspectFlagBits::eColor;
    device.run(
        [&](const vk::raii::CommandBuffer& commands)
        {
            moveImage(commands, image, aspect, vk::ImageLayout::eUndefined, kFilled);
            if (isShadow)
                commands.clearDepthStencilImage(image, kFilled, {0.5f, 0},
                                                vk::ImageSubresourceRange(aspect, 0, 1, 0, 1));
            else
                commands.copyBufferToImage(
                    *staging.buffer, image, kFilled,
                    vk::BufferImageCopy(0, 0, 0, {aspect, 0, 0, info.arrayLayers}, {}, info.extent));
            moveImage(commands, image, aspect, kFilled, vk::ImageLayout::eShaderReadOnlyOptimal);
        });

    vk::SamplerCreateInfo sampler;
    sampler.magFilter = sampler.minFilter = isShadow ? vk::Filter::eNearest : vk::Filter::eLinear;
    sampler.compareEnable = isShadow ? VK_TRUE : VK_FALSE;
    sampler.compareOp = vk::CompareOp::eLessOrEqual;
    texture.sampler = vk::raii::Sampler(device.get(), sampler);
    return texture;
}

/// What is drawn into.
struct Frame
{
    explicit Frame(const Device& device)
    {
        vk::ImageCreateInfo info({}, vk::ImageType::e2D, kColors, vk::Extent3D(kExtent, 1), 1, 1);
        info.usage = vk::ImageUsageFlagBits::eColorAttachment | vk::ImageUsageFlagBits::eTransferSrc;
        colors = device.makeImage(info, vk::ImageViewType::e2D);
        info.format = kDepths;
        info.usage = vk::ImageUsageFlagBits::eDepthStencilAttachment;
        depths = device.makeImage(info, vk::ImageViewType::e2D);

        constexpr auto kDepthLayout = vk::ImageLayout::eDepthStencilAttachmentOptimal;
        std::array<vk::AttachmentDescription, 2> attachments;
        attachments[0].format = kColors;
        attachments[0].finalLayout = vk::ImageLayout::eTransferSrcOptimal;
        attachments[1].format = kDepths;
        attachments[1].finalLayout = kDepthLayout;
        for (vk::AttachmentDescription& attachment : attachments)
            attachment.loadOp = vk::AttachmentLoadOp::eClear;
        const vk::AttachmentReference color(0, vk::ImageLayout::eColorAttachmentOptimal);
        const vk::AttachmentReference depth(1, kDepthLayout);
        const vk::SubpassDescription subpass({}, vk::PipelineBindPoint::eGraphics, {}, color, {}, &depth);
        // What is copied behind the pass waits for its colours.
        const vk::SubpassDependency read(0, VK_SUBPASS_EXTERNAL, vk::PipelineStageFlagBits::eColorAttachmentOutput,
                                         vk::PipelineStageFlagBits::eTransfer,
                                         vk::AccessFlagBits::eColorAttachmentWrite, vk::AccessFlagBits::eTransferRead);
        pass = vk::raii::RenderPass(device.get(), vk::RenderPassCreateInfo({}, attachments, subpass, read));
        const std::array views{*colors.view, *depths.view};
        framebuffer = vk::raii::Framebuffer(
            device.get(), vk::FramebufferCreateInfo({}, *pass, views, kExtent.width, kExtent.height, 1));
    }

    Image colors;
    Image depths;
    vk::raii::RenderPass pass{nullptr};
    vk::raii::Framebuffer framebuffer{nullptr};
};

/// A material as Vulkan draws it. All that it needs to know stands in the program's interface.
class Material
{
public:
    Material(const Device& device, const Frame& frame, const krTargets::SpirvProgram& program,
             const krFrontend::ProgramInterface& interface)
    {
        makeSet(device, interface);
        makePipeline(device, frame, program, interface);
    }

    void bind(const vk::raii::CommandBuffer& commands) const
    {
        commands.bindPipeline(vk::PipelineBindPoint::eGraphics, *fPipeline);
        commands.bindDescriptorSets(vk::PipelineBindPoint::eGraphics, *fLayout, 0, *fSet, {});
    }

private:
    /// Set 0: the uniform block at binding 0, samplers behind it.
    void makeSet(const Device& device, const krFrontend::ProgramInterface& interface)
    {
        using Stage = vk::ShaderStageFlagBits;
        std::vector<vk::DescriptorSetLayoutBinding> bindings{
            {0, vk::DescriptorType::eUniformBuffer, 1, Stage::eVertex | Stage::eFragment}};
        fUniforms = device.makeBuffer(vk::BufferUsageFlagBits::eUniformBuffer,
                                      sample::uniformBytes(interface, sample::ClipDepth::ZeroToOne));
        for (const krFrontend::UniformInterface& uniform : interface.uniforms)
            if (uniform.binding >= 0)
            {
                bindings.emplace_back(uniform.binding, vk::DescriptorType::eCombinedImageSampler, 1, Stage::eFragment);
                fTextures.push_back(makeTexture(device, uniform.type));
            }
        fSetLayout = vk::raii::DescriptorSetLayout(device.get(), vk::DescriptorSetLayoutCreateInfo({}, bindings));
        const std::array sizes{vk::DescriptorPoolSize(vk::DescriptorType::eUniformBuffer, 1),
                               vk::DescriptorPoolSize(vk::DescriptorType::eCombinedImageSampler,
                                                      static_cast<std::uint32_t>(bindings.size()))};
        fPool = vk::raii::DescriptorPool(
            device.get(), vk::DescriptorPoolCreateInfo(vk::DescriptorPoolCreateFlagBits::eFreeDescriptorSet, 1, sizes));
        fSet = std::move(
            vk::raii::DescriptorSets(device.get(), vk::DescriptorSetAllocateInfo(*fPool, *fSetLayout)).front());
        const vk::DescriptorBufferInfo block(*fUniforms.buffer, 0, VK_WHOLE_SIZE);
        device.get().updateDescriptorSets(
            vk::WriteDescriptorSet(*fSet, 0, 0, vk::DescriptorType::eUniformBuffer, {}, block), {});
        for (std::size_t i = 0; i < fTextures.size(); ++i)
        {
            const vk::DescriptorImageInfo image(*fTextures[i].sampler, *fTextures[i].image.view,
                                                vk::ImageLayout::eShaderReadOnlyOptimal);
            device.get().updateDescriptorSets(
                vk::WriteDescriptorSet(*fSet, bindings[i + 1].binding, 0, bindings[i + 1].descriptorType, image), {});
        }
    }

    void makePipeline(const Device& device, const Frame& frame, const krTargets::SpirvProgram& program,
                      const krFrontend::ProgramInterface& interface)
    {
        const vk::VertexInputBindingDescription binding(0, sizeof(sample::Vertex));
        std::vector<vk::VertexInputAttributeDescription> attributes;
        const auto addInput = [&](const auto& input)
        {
            constexpr std::array kFormats{vk::Format::eR32G32Sfloat, vk::Format::eR32G32B32Sfloat,
                                          vk::Format::eR32G32B32A32Sfloat};
            const sample::VertexField field = sample::fieldOf(input.programName, input.type);
            attributes.emplace_back(input.location, 0, kFormats.at(field.components - 2), field.offset);
        };
        for (const auto& input : interface.block.frameInputs)
            addInput(input);
        for (const auto& input : interface.vertexInputs)
            addInput(input);
        const vk::PipelineVertexInputStateCreateInfo vertexInput({}, binding, attributes);

        const auto makeModule = [&device](std::span<const std::uint32_t> code) {
            return vk::raii::ShaderModule(device.get(), vk::ShaderModuleCreateInfo({}, code.size_bytes(), code.data()));
        };
        const vk::raii::ShaderModule vertex = makeModule(program.vertexCode());
        const vk::raii::ShaderModule fragment = makeModule(program.fragmentCode());
        const std::array stages{
            vk::PipelineShaderStageCreateInfo({}, vk::ShaderStageFlagBits::eVertex, *vertex, "main"),
            vk::PipelineShaderStageCreateInfo({}, vk::ShaderStageFlagBits::eFragment, *fragment, "main")};
        const vk::PipelineInputAssemblyStateCreateInfo assembly({}, vk::PrimitiveTopology::eTriangleList);
        // Pictures stand on their heads in Vulkan; a viewport of negative height turns them round.
        constexpr float kSide = sample::kSize;
        const vk::Viewport viewport(0, kSide, kSide, -kSide, 0, 1);
        const vk::Rect2D scissor({}, kExtent);
        const vk::PipelineViewportStateCreateInfo view({}, viewport, scissor);
        vk::PipelineRasterizationStateCreateInfo raster;
        raster.lineWidth = 1;
        const vk::PipelineMultisampleStateCreateInfo samples;
        const vk::PipelineDepthStencilStateCreateInfo depth({}, VK_TRUE, VK_TRUE, vk::CompareOp::eLessOrEqual);
        vk::PipelineColorBlendAttachmentState colors;
        using Component = vk::ColorComponentFlagBits;
        colors.colorWriteMask = Component::eR | Component::eG | Component::eB | Component::eA;
        const vk::PipelineColorBlendStateCreateInfo blend({}, VK_FALSE, {}, colors);
        fLayout = vk::raii::PipelineLayout(device.get(), vk::PipelineLayoutCreateInfo({}, *fSetLayout));
        fPipeline = vk::raii::Pipeline(device.get(), nullptr,
                                       vk::GraphicsPipelineCreateInfo({}, stages, &vertexInput, &assembly, nullptr,
                                                                      &view, &raster, &samples, &depth, &blend, nullptr,
                                                                      *fLayout, *frame.pass));
    }

    Buffer fUniforms;
    std::vector<Texture> fTextures;
    vk::raii::DescriptorSetLayout fSetLayout{nullptr};
    vk::raii::DescriptorPool fPool{nullptr};
    vk::raii::DescriptorSet fSet{nullptr};
    vk::raii::PipelineLayout fLayout{nullptr};
    vk::raii::Pipeline fPipeline{nullptr};
};

std::vector<std::uint8_t> draw(const Device& device, const Frame& frame, const Material& material)
{
    const sample::Mesh mesh = sample::makeBall();
    const Buffer vertices =
        device.makeBuffer(vk::BufferUsageFlagBits::eVertexBuffer, std::as_bytes(std::span(mesh.vertices)));
    const Buffer triangles =
        device.makeBuffer(vk::BufferUsageFlagBits::eIndexBuffer, std::as_bytes(std::span(mesh.triangles)));
    std::vector<std::uint8_t> pixels(std::size_t{4} * sample::kSize * sample::kSize);
    const Buffer copy = device.makeBuffer(vk::BufferUsageFlagBits::eTransferDst, std::as_bytes(std::span(pixels)));
    device.run(
        [&](const vk::raii::CommandBuffer& commands)
        {
            const std::array<vk::ClearValue, 2> clear{vk::ClearColorValue(0.2f, 0.2f, 0.2f, 1.0f),
                                                      vk::ClearDepthStencilValue(1, 0)};
            commands.beginRenderPass(
                vk::RenderPassBeginInfo(*frame.pass, *frame.framebuffer, vk::Rect2D({}, kExtent), clear),
                vk::SubpassContents::eInline);
            material.bind(commands);
            commands.bindVertexBuffers(0, *vertices.buffer, vk::DeviceSize{0});
            commands.bindIndexBuffer(*triangles.buffer, 0, vk::IndexType::eUint32);
            commands.drawIndexed(static_cast<std::uint32_t>(mesh.triangles.size()), 1, 0, 0, 0);
            commands.endRenderPass();
            commands.copyImageToBuffer(
                *frame.colors.image, vk::ImageLayout::eTransferSrcOptimal, *copy.buffer,
                vk::BufferImageCopy(0, 0, 0, {vk::ImageAspectFlagBits::eColor, 0, 0, 1}, {}, vk::Extent3D(kExtent, 1)));
        });
    std::memcpy(pixels.data(), copy.memory.mapMemory(0, VK_WHOLE_SIZE), pixels.size());
    copy.memory.unmapMemory();
    return pixels;
}

} // namespace

int main(int argc, char** argv)
try
{
    const Device device;
    const Frame frame(device);
    return sample::drawAll(argc, argv, "spirv",
                           [&](const krTargets::SpirvProgram& program, const krFrontend::ProgramInterface& interface)
                           { return draw(device, frame, Material(device, frame, program, interface)); });
}
catch (const std::exception& error)
{
    std::cerr << "vulkan-host: " << error.what() << '\n';
    return 2;
}
