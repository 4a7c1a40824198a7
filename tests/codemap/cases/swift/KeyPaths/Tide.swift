let a = \Tide.height
let b: KeyPath<Tide, Int> = \.height.count
let c = \Tide.[0].name
let d = items.map(\.self)
