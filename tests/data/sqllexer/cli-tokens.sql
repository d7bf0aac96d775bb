SELECT [select], été AS "x" FROM t;
	WHERE a IS
  NOT NULL AND b <= 1.5e-3 || 'it''s'
    "two" -- no comment
  OR 𝐀x != ١٢ # dropped ? bytes
  GROUP BY c ORDERBY d
