let a = if b { 1 } else { 2 }
let c =
    switch d {
    case .x: 1
    default: 2
    }
let e = if f {
    1
} else if g {
    2
} else {
    3
}
let h = 1
