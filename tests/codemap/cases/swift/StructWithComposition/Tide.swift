struct Tide: Equatable & Hashable, any Drawable {}
