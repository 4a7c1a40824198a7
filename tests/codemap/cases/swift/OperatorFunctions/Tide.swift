func + (left: Tide, right: Tide) -> Tide { left }
func ==(left: Tide, right: Tide) -> Bool { true }
prefix func - (tide: Tide) -> Tide { tide }
struct Tide {
    static func < (left: Tide, right: Tide) -> Bool { true }
    static func += (left: inout Tide, right: Tide) {}
    static postfix func ++ (tide: inout Tide) {}
    static prefix func ! (tide: Tide) -> Bool { true }
    static func / (left: Tide, right: Int) -> Tide { left }
    static func ??<T> (left: T?, right: T) -> T { right }
}
