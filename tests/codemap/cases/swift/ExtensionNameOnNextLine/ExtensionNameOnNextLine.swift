extension
  Combinators.Element.Result
{
    public typealias Other = Int
}

extension
  Element where T: P {
    var value: Int { 0 }
}
