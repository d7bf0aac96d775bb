SELECT owner_id FROM parcels WHERE a OR (b OR c);
SELECT  x  *  (y / z) FROM t;
SELECT 1 FROM t WHERE (a AND b) AND (c AND (d AND e)) OR f
