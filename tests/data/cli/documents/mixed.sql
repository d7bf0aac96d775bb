-- parcels and their owners; two faults below
SELECT parcel_id, owner_id FROM parcels;
SELECT nope
  FROM parcels WHERE 'a;b' = [land_use];

/* a block; with ';' */
UPDATE parcels SET nothere = 1;
INSERT INTO parcels VALUES (1);
SELECT FROM parcels;;
SELECT	parcel_id FROM parcels WHERE ghost = 2
