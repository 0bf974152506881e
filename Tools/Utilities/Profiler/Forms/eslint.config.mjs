// The pages' scripts, and what looks at them: ESLint 9 or later. Prettier has the layout.
const names = list => Object.fromEntries(list.split(" ").map(name => [name, "readonly"]));

export default [
  {
    files: ["**/*.js"],
    linterOptions: {reportUnusedDisableDirectives: true},
    languageOptions: {
      ecmaVersion: 2022,
      sourceType: "module",
      globals: names(
        "document window navigator performance requestAnimationFrame setTimeout Node Event KeyboardEvent PointerEvent " +
          "WheelEvent history location URLSearchParams ResizeObserver getComputedStyle NodeFilter requestIdleCallback",
      ),
    },
    rules: {
      "array-callback-return": "error",
      "consistent-return": "error",
      curly: "error",
      eqeqeq: "error",
      "max-len": ["error", {code: 120}],
      "no-const-assign": "error",
      "no-dupe-keys": "error",
      "no-implicit-globals": "error",
      "no-param-reassign": "error",
      "no-redeclare": "error",
      "no-self-compare": "error",
      "no-shadow": "error",
      "no-undef": "error",
      "no-unreachable": "error",
      "no-unused-vars": "error",
      "no-use-before-define": ["error", {functions: false}],
      "no-var": "error",
      "object-shorthand": "error",
      "prefer-const": "error",
      "prefer-template": "error",
    },
  },
];
