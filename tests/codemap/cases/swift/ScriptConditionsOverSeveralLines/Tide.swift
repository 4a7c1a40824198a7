if let a = b,
   let c = d,
   var e = f {
    print(a)
}
guard
    let g = h,
    case .some(let i) = j
else { exit(1) }
let k = 1
