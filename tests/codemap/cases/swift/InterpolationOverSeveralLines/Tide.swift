let text = "\(items.map {
    $0.name
}) end"
let next = 1
