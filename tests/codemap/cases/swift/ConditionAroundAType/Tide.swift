#if canImport(UIKit)
import UIKit
extension A {
    func b() {}
}
#endif
extension C {}
