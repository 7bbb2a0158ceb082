#pragma once

// Compiled-in addresses of the workshop. Each value is defined here only.
namespace velino {

inline constexpr char kWorkshopContactEmail[] = "contact@korvel.example";
inline constexpr char kDefaultClientEmail[] = "client@example.com";
inline constexpr char kFallbackLogoURL[] = "https://korvel.example/photos/velino-logo.png?v=1";

} // namespace velino
