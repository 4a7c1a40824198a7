let one = 1
var two: Int { 2 }
private let three = [1, 2, 3].map { n in
    let m = n
    return m
}
public var four = 4 { didSet { let a = 1 } }
