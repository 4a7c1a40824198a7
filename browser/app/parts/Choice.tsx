// A few values side by side, one of them chosen.

interface Properties<Value extends string> {
  name: string;
  values: readonly { value: Value; text: string }[];
  chosen: Value;
  onChoose: (value: Value) => void;
}

export function Choice<Value extends string>({ name, values, chosen, onChoose }: Properties<Value>) {
  return (
    <div class="choice" role="group" aria-label={name}>
      {values.map(({ value, text }) => (
        <button type="button" key={value} aria-pressed={value === chosen} onClick={() => onChoose(value)}>
          {text}
        </button>
      ))}
    </div>
  );
}
