@objc(NVTide) @MainActor
@available(iOS 13, macOS 10.15, *)
internal class Tide: NSObject {}
