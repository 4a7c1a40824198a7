let a =
    1 +
    2
let b = [
    "x": [1, 2],
    "y": [],
]
let c = f(
    1,
    2
)
let d: [Int]
    = []
let e = a ??
    b
let g = a &&
    !b
let h = 1
