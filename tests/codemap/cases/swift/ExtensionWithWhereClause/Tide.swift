extension Array where Element: Comparable {
    var isSorted: Bool { true }
}
extension Collection where Self == [Int], Element == Int {}
