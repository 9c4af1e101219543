// SDL's software renderer: fills, and textures for pictures and glyphs.
#include "frame_immediate.h"

#include <stdexcept>

#include <SDL.h>

namespace kestrin_bench {

namespace {

class SdlFrames final : public ImmediateFrames
{
public:
    SdlFrames() = default;
    ~SdlFrames() override { Free(); }
    SdlFrames(const SdlFrames&) = delete;
    SdlFrames& operator=(const SdlFrames&) = delete;

protected:
    void Load(const Scene& scene) override
    {
        Free();
        _surface = SDL_CreateRGBSurfaceWithFormatFrom(Words(), scene.width, scene.height, 32,
                                                      scene.width * 4, SDL_PIXELFORMAT_ARGB8888);
        _renderer = SDL_CreateSoftwareRenderer(_surface);
        if (!_renderer)
            throw std::runtime_error(SDL_GetError());
        for (const Item& item : scene.items) {
            const Picture& picture = item.picture;
            _pictures.push_back(
                item.kind == Kind::Picture
                    ? MakeTexture(picture.words, picture.width, picture.height,
                                  picture.opaque ? SDL_BLENDMODE_NONE : SDL_BLENDMODE_BLEND)
                    : nullptr);
        }
    }

    void Begin(const Rect& clip) override
    {
        const SDL_Rect area = Area(clip);
        SDL_RenderSetClipRect(_renderer, &area);
        SDL_SetRenderDrawBlendMode(_renderer, SDL_BLENDMODE_NONE);
        Fill(clip, kBackground);
        SDL_SetRenderDrawBlendMode(_renderer, SDL_BLENDMODE_BLEND);
    }

    void Fill(const Rect& box, std::uint32_t argb) override
    {
        const SDL_Rect area = Area(box);
        const auto channel = [&](int shift) { return static_cast<Uint8>(argb >> shift); };
        SDL_SetRenderDrawColor(_renderer, channel(16), channel(8), channel(0), channel(24));
        SDL_RenderFillRect(_renderer, &area);
    }

    void Draw(std::size_t item, int x, int y) override
    {
        SDL_Texture* texture = _pictures[item];
        SDL_Rect area = {x, y, 0, 0};
        SDL_QueryTexture(texture, nullptr, nullptr, &area.w, &area.h);
        SDL_RenderCopy(_renderer, texture, nullptr, &area);
    }

    void Write(const TextGrid& grid, const std::u16string& text, int x, int y) override
    {
        ForEachGlyph(grid, text, x, y, [&](const Glyph& glyph, int left, int top) {
            const SDL_Rect area = {left, top, glyph.width, glyph.height};
            SDL_RenderCopy(_renderer, Cached(glyph), nullptr, &area);
        });
    }

    void End() override { SDL_RenderFlush(_renderer); }

private:
    static SDL_Rect Area(const Rect& rect) { return {rect.x, rect.y, rect.w, rect.h}; }

    SDL_Texture* MakeTexture(const std::vector<std::uint32_t>& words, int width, int height,
                             SDL_BlendMode mode)
    {
        SDL_Texture* texture = SDL_CreateTexture(_renderer, SDL_PIXELFORMAT_ARGB8888,
                                                 SDL_TEXTUREACCESS_STATIC, width, height);
        SDL_UpdateTexture(texture, nullptr, words.data(), width * 4);
        SDL_SetTextureBlendMode(texture, mode);
        return texture;
    }

    /** White, with the coverage for opacity. */
    SDL_Texture* Cached(const Glyph& glyph)
    {
        SDL_Texture*& texture = _glyphs[&glyph];
        if (!texture) {
            std::vector<std::uint32_t> words;
            for (const std::uint8_t coverage : glyph.coverage)
                words.push_back(static_cast<std::uint32_t>(coverage) << 24 | 0xffffff);
            texture = MakeTexture(words, glyph.width, glyph.height, SDL_BLENDMODE_BLEND);
        }
        return texture;
    }

    /** The textures go with the renderer. */
    void Free()
    {
        _pictures.clear();
        _glyphs.clear();
        if (_renderer)
            SDL_DestroyRenderer(_renderer);
        SDL_FreeSurface(_surface);
        _renderer = nullptr;
        _surface = nullptr;
    }

    SDL_Surface* _surface = nullptr;
    SDL_Renderer* _renderer = nullptr;
    std::vector<SDL_Texture*> _pictures;
    std::map<const Glyph*, SDL_Texture*> _glyphs;
};

} // namespace

std::unique_ptr<FramePainter> MakeSdlFrames()
{
    return std::make_unique<SdlFrames>();
}

} // namespace kestrin_bench
