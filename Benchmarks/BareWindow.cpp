#include <SDL.h>
#include <pango/pangocairo.h>

// A window with one line of text, drawn as directly as it goes: the peer of the gallery's start.
int main() {
  constexpr int kWidth = 640;
  constexpr int kHeight = 480;
  SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
  SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
  if (SDL_Init(SDL_INIT_VIDEO) != 0) return 1;
  SDL_Window* const window =
      SDL_CreateWindow("Bare", SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED, kWidth, kHeight, 0);
  if (!window) return 1;
  SDL_Surface* const pixels = SDL_GetWindowSurface(window);
  cairo_surface_t* const surface = cairo_image_surface_create_for_data(
      static_cast<unsigned char*>(pixels->pixels), CAIRO_FORMAT_RGB24, kWidth, kHeight, pixels->pitch);
  cairo_t* const cairo = cairo_create(surface);
  cairo_set_source_rgb(cairo, 1, 1, 1);
  cairo_paint(cairo);
  cairo_set_source_rgb(cairo, 0, 0, 0);
  PangoLayout* const layout = pango_cairo_create_layout(cairo);
  pango_layout_set_text(layout, "One line of text.", -1);
  pango_cairo_show_layout(cairo, layout);
  cairo_surface_flush(surface);
  SDL_UpdateWindowSurface(window);
  SDL_Event event;
  while (SDL_WaitEvent(&event) == 1 && event.type != SDL_QUIT) {
  }
  return 0;
}
