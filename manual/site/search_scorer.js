// How much a result of a search counts. What the query names comes first, then what has the query's
// words in its name, as a phrase or early in its description. A function, whose name has its object,
// comes before the constants that it takes.
var Scorer = {
  objNameMatch: 11,
  objPartialMatch: 6,
  objPrio: {0: 15, 1: 5, 2: -5},
  objPrioDefault: 0,
  title: 12,
  partialTitle: 7,
  term: 5,
  partialTerm: 2,
  score: ([, title, , , score]) => {
    const query = new URLSearchParams(location.search).get("q").trim().toLowerCase();
    const [name, about = ""] = title.toLowerCase().split(/: (.*)/s);
    if (name === query || name.endsWith("_" + query)) return score + 100;
    const words = query.split(/\s+/);
    const held = (text) => words.filter((word) => text.includes(word)).length;
    const isFunction = name.split("_").length > 2;
    const phrase = words.length > 1 && about.includes(query) ? 20 : 0;
    return score + 10 * held(name) + 4 * held(about.slice(0, 40)) + phrase + (isFunction ? 5 : 0);
  },
};
