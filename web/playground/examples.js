// The examples of the page. Each shows one surprise of the language.

import reportContext from "../../examples/report/context.json?text";
import reportFooter from "../../examples/report/parts/footer.html?text";
import reportHead from "../../examples/report/parts/head.html?text";
import reportRow from "../../examples/report/parts/month_row.html?text";
import report from "../../examples/report/report.html?text";

const json = (values) => JSON.stringify(values, null, 2) + "\n";

export const examples = [
  {
    title: "Hello",
    lesson: "Names in double braces are replaced by values. Change a name on either side and watch the messages.",
    files: [["page.txt", "Hello, {{ name }}! You have {{ count }} new messages.\n"]],
    values: json({ name: "Ada", count: 12 }),
  },
  {
    title: "Conditions need booleans",
    lesson: "Only true and false are booleans. A string is not, and neither part is rendered.",
    files: [
      [
        "page.txt",
        "{% if member %}Welcome back.{% else %}Please register.{% endif %}\n" +
          "{% if name %}Dear {{ name }},{% else %}Dear reader,{% endif %}\n",
      ],
    ],
    values: json({ member: false, name: "Ada" }),
  },
  {
    title: "Loops and prefixes",
    lesson:
      "The loop variable is a prefix for the members of an element. It is not a value itself: use “value” for elements that are not objects.",
    files: [
      [
        "page.txt",
        "{% for tea in teas %}{{ tea.name }} costs {{ tea.price }}.\n{% endfor %}" +
          "Tags:{% for tag in tags %} {{ tag.value }}{% endfor %}\nWrong:{% for tag in tags %} {{ tag }}{% endfor %}\n",
      ],
    ],
    values: `{
  "teas": [
    { "name": "Assam", "price": 4.50 },
    { "name": "Sencha", "price": 6.00 }
  ],
  "tags": ["black", "green"]
}
`,
  },
  {
    title: "Whitespace stays",
    lesson: "Nothing is trimmed: line breaks around tags appear in the output. The second list avoids the empty lines.",
    files: [
      [
        "page.txt",
        "With the tags on lines of their own:\n{% for item in items %}\n- {{ item.value }}\n{% endfor %}\n\n" +
          "With a tag at the start of the line:\n{% for item in items %}- {{ item.value }}\n{% endfor %}",
      ],
    ],
    values: json({ items: ["one", "two", "three"] }),
  },
  {
    title: "Commas between items",
    lesson: "With “positions” on, every element has “index”, “first” and “last”.",
    files: [
      [
        "page.txt",
        "{% for city in cities %}{{ city.index }}. {{ city.value }}{% if city.last %}{% else %}, {% endif %}{% endfor %}\n",
      ],
    ],
    values: json({ cities: ["Oslo", "Lima", "Kyoto"] }),
    positions: true,
  },
  {
    title: "Includes see bare names",
    lesson: "An included template sees the same values, but no loop variables. The second one gets this wrong.",
    files: [
      [
        "page.txt",
        '{% for item in items %}{% include "row.txt" %}{% endfor %}\n{% for item in items %}{% include "wrong.txt" %}{% endfor %}',
      ],
      ["row.txt", "{{ name }} costs {{ price }}.\n"],
      ["wrong.txt", "{{ item.name }} is here.\n"],
    ],
    values: json({ items: [{ name: "Tea", price: 3 }, { name: "Cake", price: 4 }] }),
  },
  {
    title: "Inner elements hide outer ones",
    lesson: "In nested loops, members of the inner element are found first, even with the prefix of the outer variable.",
    files: [
      [
        "page.txt",
        "{% for shop in shops %}{% for item in shop.items %}" +
          "{{ shop.name }} in {{ shop.town }}: {{ item.name }}\n{% endfor %}{% endfor %}",
      ],
    ],
    values: json({
      shops: [{ name: "Corner", town: "Leeds", items: [{ name: "Tea" }, { name: "Milk" }] }],
    }),
  },
  {
    title: "Defaults from outer values",
    lesson: "If an element lacks a member, the outer value of that name is used, which makes it a default.",
    files: [["page.txt", "{% for page in pages %}{{ page.title }}\n{% endfor %}"]],
    values: json({ title: "Untitled", pages: [{ title: "Start" }, {}, { title: "End" }] }),
  },
  {
    title: "Dotted names and booleans with members",
    lesson: "Members of objects have dotted names. An object with “$boolean” is a boolean whose other members are in scope inside its block.",
    files: [
      [
        "page.txt",
        "{{ user.name }} from {{ user.address.town }}\n" +
          "{% if discount %}{{ title }}: {{ percent }} % off{% endif %} - {{ title }}\n",
      ],
    ],
    values: json({
      user: { name: "Ada", address: { town: "London" } },
      title: "Books",
      discount: { $boolean: true, title: "Summer sale", percent: 20 },
    }),
  },
  {
    title: "Escaping",
    lesson: "The host chooses the escaping. Values are escaped; template text never is. Choose “none” and look at the page.",
    files: [["page.html", "<h1>{{ title }}</h1>\n<p title=\"{{ hint }}\">{{ text }}</p>\n"]],
    values: json({ title: "Tea & cake", hint: 'say "yes"', text: "<img src=x> is only text" }),
    escape: "html",
    view: "page",
  },
  {
    title: "Tags of other engines",
    lesson: "Tags from other template languages are recognized, and the messages say what to write instead.",
    files: [
      ["page.txt", "{{ name | upper }}\n{% if not member %}{% elif x %}{% endif %}\nbody {{margin: 0}}\n"],
    ],
    values: json({ name: "Ada", member: true }),
  },
  {
    title: "A template that never ends",
    lesson: "A template that includes itself twice would grow without end. The limits stop it, and the page stays responsive.",
    files: [
      ["page.txt", 'Growing:{% include "again.txt" %}'],
      ["again.txt", '{% for x in list %}{% include "again.txt" %}{% endfor %}'],
    ],
    values: json({ list: [1, 2] }),
  },
  {
    title: "A report",
    lesson: "A complete page built from several files, with months, bookings and text in six languages.",
    files: [
      ["report.html", report],
      ["parts/head.html", reportHead],
      ["parts/month_row.html", reportRow],
      ["parts/footer.html", reportFooter],
    ],
    values: reportContext,
    escape: "html",
    view: "page",
  },
];
